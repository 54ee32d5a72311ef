// Looks for an instrument at an address, shows what is tried, and stops: detect [host [port [commands]]]
using System;

static class Program
{
    delegate void UpdateHandler(string cmd, string address, short port, ref bool abort);

    static int tried, allowed;

    // Comes while AutoDetect runs. An exception in here would be swallowed.
    static void OnUpdate(string cmd, string address, short port, ref bool abort)
    {
        abort = tried == allowed;
        if (!abort) ++tried;
        Console.WriteLine(abort ? "stopped:     before " + cmd : "trying:      " + cmd + " at " + address + ":" + port);
    }

    static void OnEnd()
    {
        Console.WriteLine("ended:       after " + tried + " commands");
    }

    [STAThread]
    static int Main(string[] words)
    {
        allowed = words.Length > 2 ? int.Parse(words[2]) : 2;
        try
        {
            dynamic tcp = Activator.CreateInstance(Type.GetTypeFromProgID("KespCommObj.CKespTCP", true));
            tcp.IPAddress = words.Length > 0 ? words[0] : "127.0.0.1";
            tcp.Port = words.Length > 1 ? int.Parse(words[1]) : 10001;
            tcp.AutoDetectUpdate += new UpdateHandler(OnUpdate);
            tcp.AutoDetectEnd += new Action(OnEnd);
            string result = "";
            bool found = tcp.AutoDetect(ref result);
            tcp.Uninitialize();
            Console.WriteLine(found ? "reply:       " + result : "nothing found");
            return found ? 0 : 1;
        }
        catch (Exception error)
        {
            Console.WriteLine("error:       " + error.HResult);
            Console.WriteLine("source:      " + error.Source);
            Console.WriteLine("description: " + error.Message);
            return 2;
        }
    }
}
