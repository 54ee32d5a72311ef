// Not yet run. Asks an instrument on the network who it is, with a library beside the program that is not registered.
using System;

class Client
{
    [STAThread]
    static int Main(string[] words)
    {
        Type type = Type.GetTypeFromProgID("KespCommObj.CKespCommObj", true);
        dynamic comm = Activator.CreateInstance(type);
        comm.CommStyle = 1; // csTCPIP
        dynamic tcp = comm.CommObject;
        tcp.IPAddress = words.Length > 0 ? words[0] : "127.0.0.1";
        tcp.Port = (short)(words.Length > 1 ? int.Parse(words[1]) : 10001);
        string reply = "";
        if (!comm.Query(ref reply, "*IDN?"))
        {
            Console.Error.WriteLine(comm.CommErrorDescr);
            return 1;
        }
        Console.WriteLine(reply);
        return 0;
    }
}
