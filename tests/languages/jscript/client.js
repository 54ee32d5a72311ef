// What JScript can do with the library: the cases of the client matrix, with the instrument at host and port.
var csNone = -1, csTCPIP = 1, sckTCPProtocol = 0, sckUDPProtocol = 1, cfrSuccess = 0, cfrInvalidIPAddress = 11;
// E_NOTIMPL; what VBArray says of something else than an array.
var notImplemented = -2147467263, noArray = -2146823275;
var identity = "KESP,TORTURE,SIM00666,1.0";

var host = WScript.Arguments(0);
var port = parseInt(WScript.Arguments(1), 10);
// What the handlers heard.
var heard = "";

function check(what, found, expected) {
  if (found !== expected) throw new Error(what + ": " + found + " instead of " + expected);
}

// Errors have no source here.
function refused(what, call, number, text) {
  var failure = null;
  try {
    call();
  } catch (error) {
    failure = error;
  }
  check(what + " is refused", failure !== null, true);
  check(what + ", number", failure.number, number);
  if (text) check(what + ", text", failure.description, text);
}

function skip(reason) {
  throw { skipped: reason };
}

function make(name) {
  return new ActiveXObject("KespCommObj." + name);
}

function connected() {
  var comm = make("CKespCommObj");
  comm.CommStyle = csTCPIP;
  comm.CommObject.IPAddress = host;
  comm.CommObject.Port = port;
  return comm;
}

// Wine's typeof has no word for an array of bytes.
function isText(value) {
  try {
    return typeof value === "string";
  } catch (error) {
    check("typeof", error.number, notImplemented);
    return false;
  }
}

function models(instruments) {
  var found = "";
  for (var all = new Enumerator(instruments); !all.atEnd(); all.moveNext()) found += all.item().Model;
  return found;
}

// With handlers, where the script host has events.
function watched() {
  var tcp = make("CKespTCP");
  tcp.IPAddress = host;
  tcp.Port = port;
  heard = "";
  try {
    WScript.ConnectObject(tcp, "tcp_");
  } catch (error) {
    check("ConnectObject", error.number, notImplemented);
    skip("the script host connects no events (WScript.ConnectObject fails)");
  }
  return tcp;
}

function tcp_AutoDetectBegin() {
  heard += "begin ";
}

function tcp_AutoDetectUpdate(cmd, IPAddress, Port, Abort) {
  heard += cmd + " " + IPAddress + " " + Port + " " + Abort + " ";
}

function tcp_AutoDetectEnd() {
  heard += "end";
}

var cases = {
  creation: function () {
    var names = ["CKespCommObj", "CKespTCP", "CKespCOMPort3", "CKespIEEE", "CInstrument", "CInstruments"];
    for (var i = 0; i < names.length; i++) check(names[i], typeof make(names[i]), "object");
    var key = make("CKespCommObj").GetKey();
    check("key", /^[0-9A-F]{10}K$/.test(key), true);
    check("another key", make("CKespCommObj").GetKey() !== key, true);
    refused("a class that clients do not make", function () { make("CKespSmartSwitch3"); }, -2146827859);
  },
  settings: function () {
    var comm = connected(), tcp = comm.CommObject;
    check("CommStyle", comm.CommStyle, csTCPIP);
    check("IPAddress", tcp.IPAddress, host);
    check("Port", tcp.Port, port);
    tcp.TerminateOnEOS = false;
    check("TerminateOnEOS", tcp.TerminateOnEOS, false);
    tcp.TerminateOnEOS = true;
    check("TerminateOnEOS again", tcp.TerminateOnEOS, true);
    comm.BinaryTimeoutms = 70000;
    check("BinaryTimeoutms", comm.BinaryTimeoutms, 70000);
  },
  query: function () {
    var comm = connected(), reply = { value: "" };
    check("Query", comm.Query(reply, "*IDN?"), true);
    check("its status", comm.CommError, cfrSuccess);
    check("Update", comm.Update("SETP 20"), true);
    comm.CommObject.IPAddress = "0.0.0.0";
    check("its reply", reply.value, identity);
    check("Query of nobody", comm.Query("", "*IDN?"), false);
    check("its text", comm.CommErrorDescr, "Invalid IP Address");
  },
  bytes: function () {
    var reply = { value: null }, bytes = null;
    check("QueryBinary", connected().QueryBinary(reply, "ALLBYTES?"), true);
    check("something came", reply.value !== null, true);
    check("a text came", isText(reply.value), false);
    try {
      bytes = new VBArray(reply.value);
    } catch (error) {
      check("VBArray", error.number, noArray);
      skip("the script engine cannot look into arrays of bytes (VBArray refuses them)");
    }
    var all = bytes.toArray();
    check("lower bound", bytes.lbound(), 0);
    check("number", all.length, 256);
    for (var i = 0; i < 256; i++) check("byte " + i, all[i], i < 13 ? i : i < 255 ? i + 1 : 13);
  },
  error: function () {
    var tcp = make("CKespTCP");
    tcp.Port = 7;
    refused("Port 0", function () { tcp.Port = 0; }, -2147221263, "Invalid Port");
    check("Port", tcp.Port, 7);
  },
  events: function () {
    var tcp = watched(), reply = { value: "" };
    check("AutoDetect", tcp.AutoDetect(reply), true);
    check("answer", reply.value, identity);
    check("events", heard, "begin *IDN? " + host + " " + port + " false end");
    tcp.Uninitialize();
  },
  abort: function () {
    skip("a handler in JScript gets a copy of Abort");
  },
  collection: function () {
    var instruments = make("CInstruments"), names = ["A", "B"];
    for (var i = 0; i < names.length; i++) {
      var instrument = make("CInstrument");
      instrument.Model = names[i];
      if (i === 0) instruments.AddReference(instrument); else instruments.AddReference(instrument, "rack");
    }
    check("Count", instruments.Count, 2);
    check("Item(1)", instruments.Item(1).Model, "A");
    check("Item by key", instruments.Item("rack").Model, "B");
    check("default member", instruments("RACK").Model, "B");
    check("Enumerator", models(instruments), "AB");
    instruments.Remove(1);
    check("Remove", models(instruments), "B");
    // 0x800A0000 and 9.
    refused("a wrong position", function () { instruments.Item(9); }, -2146828279, "Subscript out of range");
  },
  enumerations: function () {
    var comm = make("CKespCommObj"), tcp = make("CKespTCP");
    comm.CommStyle = csNone;
    check("csNone", comm.CommStyle, -1);
    check("no transport", comm.CommObject, null);
    refused("Query without a transport", function () { comm.Query("", "*IDN?"); }, -2147221303,
            "Communications object not initialized");
    comm.CommStyle = csTCPIP;
    check("csTCPIP", comm.CommStyle, 1);
    comm.Query("", "*IDN?");
    check("cfrInvalidIPAddress", comm.CommError, cfrInvalidIPAddress);
    tcp.Protocol = sckUDPProtocol;
    check("sckUDPProtocol", tcp.Protocol, 1);
    refused("a style that there is not", function () { comm.CommStyle = 7; }, -2147221304);
    check("the style before", comm.CommStyle, csTCPIP);
  },
  optional: function () {
    var comm = connected(), tcp = comm.CommObject, instruments = make("CInstruments"), reply = { value: "" };
    check("Query with two", comm.Query(reply, "ECHO a"), true);
    check("its reply", reply.value, "ECHO a");
    check("Query with four", comm.Query(reply, "ECHO b", "01", "2.5"), true);
    check("its reply too", reply.value, "ECHO b");
    instruments.AddReference(make("CInstrument"));
    check("AddReference without a key", instruments.Count, 1);
    tcp.Initialize();
    check("WriteLine without anything", tcp.WriteLine(), true);
    tcp.Uninitialize();
  },
  named: function () {
    skip("JScript has no named arguments");
  },
  objects: function () {
    for (var i = 0; i < 1000; i++) {
      var comm = make("CKespCommObj");
      comm.CommStyle = csTCPIP;
      comm = null;
    }
    var reply = { value: "" };
    check("Query", connected().Query(reply, "*IDN?"), true);
    check("its reply", reply.value, identity);
  }
};

for (var name in cases) {
  try {
    cases[name]();
    WScript.Echo("PASS " + name);
  } catch (error) {
    if (error.skipped) WScript.Echo("SKIP " + name + ": " + error.skipped);
    else WScript.Echo("FAIL " + name + ": " + (error.description || error.message) + " (" + error.number + ")");
  }
}
WScript.Echo("DONE");
