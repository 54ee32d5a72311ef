// Asks an instrument at a COM port who it is: query_com [COM port number [bits per second [command]]]
using System;

static class Program
{
    const int csRS232 = 0, br150 = 0, br921600 = 13;

    [STAThread]
    static int Main(string[] words)
    {
        try
        {
            dynamic comm = Activator.CreateInstance(Type.GetTypeFromProgID("KespCommObj.CKespCommObj", true));
            comm.CommStyle = csRS232;
            comm.CommObject.Port = words.Length > 0 ? int.Parse(words[0]) : 1;
            SetBaudRate(comm.CommObject, words.Length > 1 ? words[1] : "9600");
            string cmd = words.Length > 2 ? words[2] : "*IDN?", result = "";
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
            return succeeded ? 0 : 1;
        }
        catch (Exception error)
        {
            Console.WriteLine("error:       " + error.HResult);
            Console.WriteLine("source:      " + error.Source);
            Console.WriteLine("description: " + error.Message);
            return 2;
        }
    }

    // A rate is set by its number, which has the rate as its name. The range comes first: a rate outside is refused.
    static void SetBaudRate(dynamic port, string baud)
    {
        port.MaxBaudRate = br921600;
        port.MinBaudRate = br150;
        int rate = br150;
        while (rate <= br921600 && port.BaudRateName(rate) != baud) ++rate;
        if (rate > br921600) throw new ArgumentException(baud + " is not a bit rate of this library");
        port.BaudRate = rate;
    }
}
