// The client of the matrix that is late bound: it knows nothing of the library but names, and calls through dynamic.
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

internal static class Late
{
    private const string Identity = "KESP,TORTURE,SIM00666,1.0";
    private const int TcpIp = 1, Udp = 1;
    private static string host;
    private static short port;

    private delegate void UpdateHandler(string cmd, string address, short at, ref bool abort);

    [STAThread]
    private static int Main(string[] words)
    {
        host = words[0];
        port = short.Parse(words[1]);
        return Results.Run(new Dictionary<string, Action> {
            { "creation", Creation }, { "settings", Settings }, { "query", Query }, { "bytes", Bytes },
            { "error", Error }, { "events", Events }, { "abort", Abort }, { "collection", Collection },
            { "enumerations", Enumerations }, { "optional", Optional }, { "named", Named }, { "objects", Objects } });
    }

    private static dynamic Make(string name)
    {
        return Activator.CreateInstance(Type.GetTypeFromProgID("KespCommObj." + name, true));
    }

    private static dynamic Transport()
    {
        dynamic tcp = Make("CKespTCP");
        tcp.IPAddress = host;
        tcp.Port = port;
        tcp.Protocol = 0;
        return tcp;
    }

    private static dynamic Communication()
    {
        dynamic comm = Make("CKespCommObj");
        comm.CommStyle = TcpIp;
        comm.CommObject.IPAddress = host;
        comm.CommObject.Port = port;
        return comm;
    }

    private static void Creation()
    {
        dynamic one = Make("CKespCommObj"), other = Make("CKespCommObj");
        Results.True(one.GetKey() != other.GetKey(), "two objects have the same key");
        foreach (string name in new[] { "CKespTCP", "CKespCOMPort3", "CKespIEEE", "CInstrument", "CInstruments" })
            Results.True(Marshal.IsComObject((object)Make(name)), name + " is none of COM");
        Results.True(Type.GetTypeFromProgID("KespCommObj.CKespSmartSwitch3") == null, "a smart switch can be made");
    }

    private static void Settings()
    {
        dynamic comm = Make("CKespCommObj");
        comm.CommStyle = TcpIp;
        Results.Equal(TcpIp, comm.CommStyle, "CommStyle");
        dynamic tcp = comm.CommObject;
        tcp.IPAddress = "127.0.0.2";
        Results.Equal("127.0.0.2", tcp.IPAddress, "IPAddress");
        tcp.Port = 12345;
        Results.Equal((short)12345, tcp.Port, "Port");
        foreach (bool value in new[] { false, true })
        {
            tcp.TerminateOnEOS = value;
            Results.Equal(value, tcp.TerminateOnEOS, "TerminateOnEOS");
        }
        comm.BinaryTimeoutms = 70000;
        Results.Equal(70000, comm.BinaryTimeoutms, "BinaryTimeoutms");
    }

    private static void Query()
    {
        dynamic comm = Communication();
        string result = "";
        Results.True(comm.Query(ref result, "*IDN?"), "Query is False");
        Results.Equal(Identity, result, "the reply");
        Results.Equal(0, comm.CommError, "CommError");
        object any = null;
        Results.True(comm.Query(ref any, "*IDN?"), "Query into an object is False");
        Results.Equal(Identity, any, "the reply in an object");
        comm.CommObject.IPAddress = "0.0.0.0";
        Results.True(!comm.Query(ref result, "*IDN?"), "Query of nobody is True");
        Results.Equal("Invalid IP Address", comm.CommErrorDescr, "CommErrorDescr");
    }

    private static void Bytes()
    {
        object result = null;
        Results.True(Communication().QueryBinary(ref result, "ALLBYTES?"), "QueryBinary is False");
        Results.AllBytes(result);
        byte[] bytes = null;
        Results.True(Communication().QueryBinary(ref bytes, "ALLBYTES?"), "QueryBinary into a byte[] is False");
        Results.AllBytes(bytes);
        string text = "";
        Exception error = Results.RaisedBy(() => Communication().QueryBinary(ref text, "*IDN?"), "bytes into a string");
        Results.True(error.Message.StartsWith("Type mismatch (the reply is an array of bytes;"), error.Message);
    }

    private static void Error()
    {
        dynamic tcp = Make("CKespTCP");
        tcp.Port = 7;
        Exception error = Results.RaisedBy(() => tcp.Port = 0, "Port = 0");
        Results.Equal(typeof(COMException), error.GetType(), "the exception");
        Results.Equal(-2147221263, error.HResult, "its number");
        Results.Equal("[CKespTCP - Port]", error.Source, "its source");
        Results.Equal("Invalid Port", error.Message, "its text");
        Results.Equal((short)7, tcp.Port, "Port");
    }

    private static void Events()
    {
        dynamic tcp = Transport();
        var told = new List<string>();
        UpdateHandler update = (string cmd, string address, short at, ref bool abort) =>
            told.Add("update " + cmd + " " + address + " " + at + " " + abort);
        tcp.AutoDetectBegin += new Action(() => told.Add("begin"));
        tcp.AutoDetectUpdate += update;
        tcp.AutoDetectEnd += new Action(() => told.Add("end"));
        string result = "";
        Results.True(tcp.AutoDetect(ref result), "AutoDetect is False");
        Results.Equal(Identity, result, "what it found");
        string expected = "begin; update *IDN? " + host + " " + port + " False; end";
        Results.Equal(expected, string.Join("; ", told), "what was told");
        tcp.AutoDetectUpdate -= update;
        Results.True(tcp.AutoDetect(ref result), "the second AutoDetect is False");
        Results.Equal(expected + "; begin; end", string.Join("; ", told), "what was told without that handler");
    }

    private static void Abort()
    {
        dynamic tcp = Transport();
        int updates = 0, ends = 0;
        tcp.AutoDetectUpdate += new UpdateHandler((string cmd, string address, short at, ref bool abort) =>
        {
            ++updates;
            abort = true;
        });
        tcp.AutoDetectEnd += new Action(() => ++ends);
        string result = "";
        Results.True(!tcp.AutoDetect(ref result), "AutoDetect is True");
        Results.Equal("", result ?? "", "what it found");
        Results.Equal(1, updates, "the number of AutoDetectUpdate");
        Results.Equal(1, ends, "the number of AutoDetectEnd");
    }

    private static void Collection()
    {
        dynamic all = Make("CInstruments"), first = Make("CInstrument"), second = Make("CInstrument");
        first.Model = "first";
        second.Model = "second";
        all.AddReference(first);
        all.AddReference(second, "rack");
        Results.Equal(2, all.Count, "Count");
        Results.Equal("first", all.Item(1).Model, "Item(1)");
        Results.Equal("second", all.Item("rack").Model, "Item(\"rack\")");
        Results.Equal("second", all["rack"].Model, "[\"rack\"]");
        var models = new List<string>();
        foreach (dynamic instrument in all) models.Add(instrument.Model);
        Results.Equal("first second", string.Join(" ", models), "what foreach gives");
        all.Remove(1);
        Results.Equal(1, all.Count, "Count after Remove");
        Results.Equal("second", all.Item(1).Model, "what is left");
        // Through dynamic, .NET makes an exception of its own of error 9.
        Exception error = Results.RaisedBy(() => all.Item(9), "Item(9)");
        Results.Equal(typeof(IndexOutOfRangeException), error.GetType(), "what Item(9) raises: " + error.Message + ":");
    }

    private static void Enumerations()
    {
        dynamic tcp = Make("CKespTCP");
        tcp.Protocol = Udp;
        Results.Equal(Udp, tcp.Protocol, "Protocol");
        dynamic comm = Make("CKespCommObj");
        comm.CommStyle = -1;
        Exception error = Results.RaisedBy(() => comm.CommStyle = 7, "CommStyle 7");
        Results.Equal(-2147221304, error.HResult, "its number");
        Results.Equal(-1, comm.CommStyle, "CommStyle");
    }

    private static void Optional()
    {
        dynamic comm = Communication();
        string result = "";
        Results.True(comm.Query(ref result, "ECHO a"), "Query with two arguments is False");
        Results.Equal("ECHO a", result, "its reply");
        Results.True(comm.Query(ref result, "ECHO b", "01", "2.5"), "Query with four arguments is False");
        Results.Equal("ECHO b", result, "its reply");
        dynamic instruments = Make("CInstruments");
        instruments.AddReference(Make("CInstrument"));
        Results.Equal(1, instruments.Count, "Count after AddReference without a key");
        dynamic tcp = Transport();
        Results.True(tcp.Initialize(), "Initialize is False");
        Results.True(tcp.WriteLine(), "WriteLine is False");
        Results.True(tcp.Uninitialize(), "Uninitialize is False");
    }

    private static void Named()
    {
        string result = "";
        Results.True(Communication().Query(cmd: "ECHO b", result: ref result), "Query is False");
        Results.Equal("ECHO b", result, "its reply");
    }

    private static void Objects()
    {
        for (int i = 0; i < 1000; ++i)
        {
            dynamic comm = Make("CKespCommObj");
            comm.CommStyle = TcpIp;
            Results.Equal(0, Marshal.ReleaseComObject((object)comm), "what still holds object " + i);
        }
        string result = "";
        Results.True(Communication().Query(ref result, "*IDN?"), "one more Query is False");
        Results.Equal(Identity, result, "its reply");
    }
}
