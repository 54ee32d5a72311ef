// Finds the instruments on the network and asks each who it is: discover
using System;

static class Program
{
    const int sckUDPProtocol = 1;

    [STAThread]
    static int Main()
    {
        try
        {
            dynamic tcp = Activator.CreateInstance(Type.GetTypeFromProgID("KespCommObj.CKespTCP", true));
            // One broadcast to everybody, over UDP; what answers is asked over TCP.
            tcp.Protocol = sckUDPProtocol;
            string result = "";
            bool found = tcp.AutoDetect(ref result);
            foreach (dynamic instrument in tcp.Devices)
                Console.WriteLine("instrument:  {0}  model {1}  serial {2}", (string)instrument.IPAddress,
                                  (string)instrument.Model, (string)instrument.Serial);
            if (!found) Console.WriteLine("nobody answered");
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
