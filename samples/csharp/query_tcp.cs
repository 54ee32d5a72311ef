// Asks an instrument on the network who it is: query_tcp [host [port [command]]]
using System;

static class Program
{
    const int csTCPIP = 1;

    [STAThread]
    static int Main(string[] words)
    {
        string cmd = words.Length > 2 ? words[2] : "*IDN?";
        try
        {
            dynamic comm = Activator.CreateInstance(Type.GetTypeFromProgID("KespCommObj.CKespCommObj", true));
            comm.CommStyle = csTCPIP;
            dynamic tcp = comm.CommObject;
            tcp.IPAddress = words.Length > 0 ? words[0] : "127.0.0.1";
            tcp.Port = words.Length > 1 ? int.Parse(words[1]) : 10001;
            return Query(comm, cmd) ? 0 : 1;
        }
        catch (Exception error)
        {
            Console.WriteLine("error:       " + error.HResult);
            Console.WriteLine("source:      " + error.Source);
            Console.WriteLine("description: " + error.Message);
            return 2;
        }
    }

    static bool Query(dynamic comm, string cmd)
    {
        string result = "";
        bool succeeded = comm.Query(ref result, cmd);
        Console.WriteLine("command:     " + cmd);
        if (succeeded)
        {
            Console.WriteLine("reply:       " + result);
        }
        else
        {
            Console.WriteLine("source:      " + comm.CommErrorSource);
            Console.WriteLine("description: " + comm.CommErrorDescr);
        }
        Console.WriteLine("status:      " + comm.CommError);
        return succeeded;
    }
}
