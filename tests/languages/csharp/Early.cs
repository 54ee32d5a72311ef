// The client of the matrix that is early bound: with the interop assembly, as the NuGet package has it.
using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using KespCommObj;
using static Results;

internal static class Early
{
    private const string Identity = "KESP,TORTURE,SIM00666,1.0";
    private static string host;
    private static short port;

    [STAThread]
    private static int Main(string[] words)
    {
        host = words[0];
        port = short.Parse(words[1]);
        return Run(new Dictionary<string, Action> {
            { "creation", Creation }, { "settings", Settings }, { "query", Query }, { "bytes", Bytes },
            { "error", Error }, { "events", Events }, { "abort", Abort }, { "collection", Collection },
            { "enumerations", Enumerations }, { "optional", Optional }, { "named", Named }, { "objects", Objects } });
    }

    private static CKespTCP Transport()
    {
        // An object initializer would be shorter, but Mono's compiler makes two objects of it.
        var tcp = new CKespTCP();
        tcp.IPAddress = host;
        tcp.Port = port;
        tcp.Protocol = EKespProtocol.sckTCPProtocol;
        return tcp;
    }

    private static CKespCommObj Communication()
    {
        var comm = new CKespCommObj();
        comm.SetCommStyle(ECommStyle.csTCPIP);
        var tcp = (CKespTCP)comm.CommObject;
        tcp.IPAddress = host;
        tcp.Port = port;
        return comm;
    }

    private static void Creation()
    {
        CKespCommObj one = new CKespCommObj(), other = new CKespCommObj();
        True(one.GetKey() != other.GetKey(), "two objects have the same key");
        foreach (object made in new object[] { new CKespTCP(), new CKespCOMPort3(), new CKespIEEE(), new CInstrument(),
                                               new CInstruments() })
            True(Marshal.IsComObject(made), "an object is none of COM");
        True(Type.GetTypeFromProgID("KespCommObj.CKespSmartSwitch3") == null, "a smart switch can be made");
        True(new CKespCOMPort3().SmartSwitch.NumPorts == 6, "its SmartSwitch has no six ports");
    }

    private static void Settings()
    {
        var comm = new CKespCommObj();
        var style = ECommStyle.csTCPIP;
        comm.PutCommStyle(ref style);
        Equal(ECommStyle.csTCPIP, comm.CommStyle, "CommStyle");
        var tcp = (CKespTCP)comm.CommObject;
        tcp.IPAddress = "127.0.0.2";
        Equal("127.0.0.2", tcp.IPAddress, "IPAddress");
        tcp.Port = 12345;
        Equal((short)12345, tcp.Port, "Port");
        foreach (bool value in new[] { false, true })
        {
            tcp.TerminateOnEOS = value;
            Equal(value, tcp.TerminateOnEOS, "TerminateOnEOS");
        }
        comm.BinaryTimeoutms = 70000;
        Equal(70000, comm.BinaryTimeoutms, "BinaryTimeoutms");
    }

    private static void Query()
    {
        CKespCommObj comm = Communication();
        string result = "";
        True(comm.Query(ref result, "*IDN?"), "Query is False");
        Equal(Identity, result, "the reply");
        Equal(ECommError.cfrSuccess, comm.CommError, "CommError");
        Equal(Identity, comm.Query("*IDN?"), "the reply without ref");
        ((CKespTCP)comm.CommObject).IPAddress = "0.0.0.0";
        True(!comm.Query(ref result, "*IDN?"), "Query of nobody is True");
        Equal("Invalid IP Address", comm.CommErrorDescr, "CommErrorDescr");
        Exception error = RaisedBy(() => comm.Query("*IDN?"), "Query of nobody without ref");
        Equal("Invalid IP Address", error.Message, "its message");
        Equal(ECommError.cfrInvalidIPAddress, ((KespException)error).Status, "its status");
    }

    private static void Bytes()
    {
        object result = null;
        True(Communication().QueryBinary(ref result, "ALLBYTES?"), "QueryBinary is False");
        AllBytes(result);
        AllBytes(Communication().QueryBinary("ALLBYTES?"));
    }

    private static void Error()
    {
        var tcp = new CKespTCP();
        tcp.Port = 7;
        Exception error = RaisedBy(() => tcp.Port = 0, "Port = 0");
        Equal(typeof(COMException), error.GetType(), "the exception");
        Equal((int)EKespTCPErrorCodes.ERR_INVALID_PORT, error.HResult, "its number");
        Equal(-2147221263, error.HResult, "its number");
        Equal("[CKespTCP - Port]", error.Source, "its source");
        Equal("Invalid Port", error.Message, "its text");
        Equal((short)7, tcp.Port, "Port");
    }

    private static void Events()
    {
        CKespTCP tcp = Transport();
        var told = new List<string>();
        __CKespTCP_AutoDetectUpdateEventHandler update = (string cmd, string address, short at, ref bool abort) =>
            told.Add("update " + cmd + " " + address + " " + at + " " + abort);
        tcp.AutoDetectBegin += () => told.Add("begin");
        tcp.AutoDetectUpdate += update;
        tcp.AutoDetectEnd += () => told.Add("end");
        string result = "";
        True(tcp.AutoDetect(ref result), "AutoDetect is False");
        Equal(Identity, result, "what it found");
        string expected = "begin; update *IDN? " + host + " " + port + " False; end";
        Equal(expected, string.Join("; ", told), "what was told");
        tcp.AutoDetectUpdate -= update;
        True(tcp.AutoDetect(ref result), "the second AutoDetect is False");
        Equal(expected + "; begin; end", string.Join("; ", told), "what was told without that handler");
    }

    private static void Abort()
    {
        CKespTCP tcp = Transport();
        int updates = 0, ends = 0;
        tcp.AutoDetectUpdate += (string cmd, string address, short at, ref bool abort) => { ++updates; abort = true; };
        tcp.AutoDetectEnd += () => ++ends;
        string result = "";
        True(!tcp.AutoDetect(ref result), "AutoDetect is True");
        Equal("", result ?? "", "what it found");
        Equal(1, updates, "the number of AutoDetectUpdate");
        Equal(1, ends, "the number of AutoDetectEnd");
    }

    private static void Collection()
    {
        var all = new CInstruments();
        CInstrument first = new CInstrument(), second = new CInstrument();
        first.Model = "first";
        second.Model = "second";
        all.AddReference(first);
        all.AddReference(second, "rack");
        Equal(2, all.Count, "Count");
        Equal("first", all.Item(1).Model, "Item(1)");
        Equal("second", all.Item("rack").Model, "Item(\"rack\")");
        var models = new List<string>();
        foreach (_CInstrument instrument in all) models.Add(instrument.Model);
        Equal("first second", string.Join(" ", models), "what foreach gives");
        all.Remove(1);
        Equal(1, all.Count, "Count after Remove");
        Equal("second", all.Item(1).Model, "what is left");
        Exception error = RaisedBy(() => all.Item(9), "Item(9)");
        Equal(unchecked((int)0x800A0009), error.HResult, "what Item(9) raises (" + error.GetType() + ")");
    }

    private static void Enumerations()
    {
        Equal(1, (int)ECommStyle.csTCPIP, "csTCPIP");
        Equal(-1, (int)ECommStyle.csNone, "csNone");
        Equal(1, (int)EKespProtocol.sckUDPProtocol, "sckUDPProtocol");
        Equal(11, (int)ECommError.cfrInvalidIPAddress, "cfrInvalidIPAddress");
        Equal(0, (int)ETimeOutSecs.toNone, "toNone");
        var tcp = new CKespTCP();
        tcp.Protocol = EKespProtocol.sckUDPProtocol;
        Equal(EKespProtocol.sckUDPProtocol, tcp.Protocol, "Protocol");
        var comm = new CKespCommObj();
        comm.SetCommStyle(ECommStyle.csNone);
        Exception error = RaisedBy(() => comm.SetCommStyle((ECommStyle)7), "CommStyle 7");
        Equal((int)EKespCommObjErrorCodes.ERR_COMM_STYLE_NOT_SUPPORTED, error.HResult, "its number");
        Equal(ECommStyle.csNone, comm.CommStyle, "CommStyle");
    }

    private static void Optional()
    {
        CKespCommObj comm = Communication();
        string result = "";
        True(comm.Query(ref result, "ECHO a"), "Query with two arguments is False");
        Equal("ECHO a", result, "its reply");
        True(comm.Query(ref result, "ECHO b", "01", "2.5"), "Query with four arguments is False");
        Equal("ECHO b", result, "its reply");
        var instruments = new CInstruments();
        instruments.AddReference(new CInstrument());
        Equal(1, instruments.Count, "Count after AddReference without a key");
        CKespTCP tcp = Transport();
        True(tcp.Initialize(), "Initialize is False");
        True(tcp.WriteLine(), "WriteLine is False");
        True(tcp.Uninitialize(), "Uninitialize is False");
    }

    private static void Named()
    {
        string result = "";
        True(Communication().Query(cmd: "ECHO b", result: ref result), "Query is False");
        Equal("ECHO b", result, "its reply");
    }

    private static void Objects()
    {
        for (int i = 0; i < 1000; ++i)
        {
            var comm = new CKespCommObj();
            comm.SetCommStyle(ECommStyle.csTCPIP);
            Equal(0, Marshal.ReleaseComObject(comm), "what still holds object " + i);
        }
        Equal(Identity, Communication().Query("*IDN?"), "the reply to one more");
    }
}
