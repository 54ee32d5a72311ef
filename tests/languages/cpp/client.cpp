// What C++ can do with the delivered header: the cases of the client matrix, with the instrument at host and
// port.
#include <functional>

#include "late.h"
#include "watcher.h"

namespace {

const std::wstring kIdentity = L"KESP,TORTURE,SIM00666,1.0";

std::wstring host;
SHORT port = 0;

void Expect(const char* what, bool is_so) {
  if (!is_so) throw std::runtime_error(what);
}

template <typename Interface>
ComPtr<Interface> Make(const CLSID& class_id) {
  ComPtr<Interface> object;
  Check(CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)));
  return object;
}

ComPtr<_CKespCommObj> MakeCommObj() {
  const auto comm = Make<_CKespCommObj>(__uuidof(CKespCommObj));
  ECommStyle style = csTCPIP;
  Check(comm->put_CommStyle(&style));
  return comm;
}

ComPtr<_CKespTCP> TransportOf(_CKespCommObj* comm) {
  ComPtr<IDispatch> transport;
  ComPtr<_CKespTCP> tcp;
  Check(comm->get_CommObject(&transport));
  Check(transport.As(&tcp));
  return tcp;
}

void Address(_CKespTCP* tcp) {
  Check(tcp->put_IPAddress(Text(host).get()));
  Check(tcp->put_Port(port));
}

ComPtr<_CKespCommObj> Connected() {
  const auto comm = MakeCommObj();
  Address(TransportOf(comm.Get()).Get());
  return comm;
}

void ExpectReply(_CKespCommObj* comm, const wchar_t* cmd, const std::wstring& reply) {
  Text result;
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  ECommError status = cfrOtherError;
  Check(comm->Query(result.out(), Text(cmd).get(), nullptr, nullptr, &succeeded));
  Check(comm->get_CommError(&status));
  Expect("Query is not True", succeeded != VARIANT_FALSE);
  Expect("the reply is another", result.c_str() == reply);
  Expect("the status is another", status == cfrSuccess);
}

void ShowCreation() {
  for (const CLSID& class_id : {__uuidof(CKespTCP), __uuidof(CKespCOMPort3), __uuidof(CKespIEEE),
                                __uuidof(CInstrument), __uuidof(CInstruments)}) {
    Make<IDispatch>(class_id);
  }
  Text key, other;
  Check(MakeCommObj()->GetKey(key.out()));
  Check(MakeCommObj()->GetKey(other.out()));
  Expect("the keys are the same", key.c_str() != std::wstring(other.c_str()));
  ComPtr<IDispatch> none;
  Expect("a class that clients do not make is registered",
         CoCreateInstance(__uuidof(CKespSmartSwitch3), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&none)) ==
             REGDB_E_CLASSNOTREG);
}

void ShowSettings() {
  const auto comm = Connected();
  const auto tcp = TransportOf(comm.Get());
  ECommStyle style = csNone;
  Text address;
  SHORT number = 0;
  LONG gap = 0;
  Check(comm->get_CommStyle(&style));
  Expect("CommStyle", style == csTCPIP);
  Check(tcp->get_IPAddress(address.out()));
  Expect("IPAddress", address.c_str() == host);
  Check(tcp->get_Port(&number));
  Expect("Port", number == port);
  for (const VARIANT_BOOL setting : {VARIANT_FALSE, VARIANT_TRUE}) {
    VARIANT_BOOL found = VARIANT_TRUE - setting;
    Check(tcp->put_TerminateOnEOS(setting));
    Check(tcp->get_TerminateOnEOS(&found));
    Expect("TerminateOnEOS", found == setting);
  }
  Check(comm->put_BinaryTimeoutms(70000));
  Check(comm->get_BinaryTimeoutms(&gap));
  Expect("BinaryTimeoutms", gap == 70000);
}

void ShowQuery() {
  const auto comm = Connected();
  ExpectReply(comm.Get(), L"*IDN?", kIdentity);
  Check(TransportOf(comm.Get())->put_IPAddress(Text(L"0.0.0.0").get()));
  Text result, description;
  VARIANT_BOOL succeeded = VARIANT_TRUE;
  Check(comm->Query(result.out(), Text(L"*IDN?").get(), nullptr, nullptr, &succeeded));
  Expect("Query of nobody is True", succeeded == VARIANT_FALSE);
  Check(comm->get_CommErrorDescr(description.out()));
  Expect("its text", description.c_str() == std::wstring(L"Invalid IP Address"));
}

void ShowBytes() {
  VARIANT result;
  VariantInit(&result);
  VARIANT_BOOL succeeded = VARIANT_FALSE;
  Check(Connected()->QueryBinary(&result, Text(L"ALLBYTES?").get(), nullptr, nullptr, &succeeded));
  Expect("QueryBinary is not True", succeeded != VARIANT_FALSE);
  Expect("no array of bytes", V_VT(&result) == (VT_ARRAY | VT_UI1));
  std::string expected;
  for (int code = 0; code < 256; ++code) {
    if (code != '\r') expected += static_cast<char>(code);
  }
  LONG first = -1, last = -1;
  void* bytes = nullptr;
  Check(SafeArrayGetLBound(V_ARRAY(&result), 1, &first));
  Check(SafeArrayGetUBound(V_ARRAY(&result), 1, &last));
  Expect("its bounds", first == 0 && last == 255);
  Check(SafeArrayAccessData(V_ARRAY(&result), &bytes));
  const std::string found(static_cast<const char*>(bytes), 256);
  SafeArrayUnaccessData(V_ARRAY(&result));
  VariantClear(&result);
  Expect("the bytes are others", found == expected + '\r');
}

void ShowError() {
  const auto tcp = Make<_CKespTCP>(__uuidof(CKespTCP));
  Check(tcp->put_Port(7));
  Expect("number", tcp->put_Port(0) == static_cast<HRESULT>(ERR_INVALID_PORT));
  ComPtr<IErrorInfo> info;
  Text source, description;
  SHORT number = 0;
  Expect("no error information", GetErrorInfo(0, &info) == S_OK);
  Check(info->GetSource(source.out()));
  Check(info->GetDescription(description.out()));
  Expect("source", source.c_str() == std::wstring(L"[CKespTCP - Port]"));
  Expect("text", description.c_str() == std::wstring(L"Invalid Port"));
  Check(tcp->get_Port(&number));
  Expect("Port", number == 7);
}

// What a detection with a handler comes to.
void ExpectDetection(bool stops, const std::wstring& answer, const std::wstring& heard) {
  const auto tcp = Make<_CKespTCP>(__uuidof(CKespTCP));
  Address(tcp.Get());
  Watcher watcher(tcp.Get(), stops);
  Text result(L"before");
  VARIANT_BOOL found = VARIANT_FALSE, closed = VARIANT_FALSE;
  Check(tcp->AutoDetect(result.out(), dlAllCommands, &found));
  Check(tcp->Uninitialize(&closed));
  Expect("AutoDetect returns another", (found != VARIANT_FALSE) == !stops);
  Expect("the answer is another", result.c_str() == answer);
  Expect("the events are others", watcher.heard == heard);
}

std::wstring OneUpdate() {
  return L"begin *IDN? " + host + L' ' + std::to_wstring(port) + L" False end";
}

void ShowEvents() {
  ExpectDetection(false, kIdentity, OneUpdate());
}

void ShowAbort() {
  ExpectDetection(true, L"", OneUpdate());
}

ComPtr<_CInstrument> MakeInstrument(const wchar_t* model) {
  const auto instrument = Make<_CInstrument>(__uuidof(CInstrument));
  Check(instrument->put_Model(Text(model).get()));
  return instrument;
}

std::wstring ModelOf(_CInstruments* instruments, const VARIANT& where) {
  ComPtr<_CInstrument> instrument;
  Text model;
  Check(instruments->Item(where, &instrument));
  Check(instrument->get_Model(model.out()));
  return model.c_str();
}

std::wstring Models(_CInstruments* instruments) {
  ComPtr<IUnknown> enumerator;
  ComPtr<IEnumVARIANT> items;
  Check(instruments->get_NewEnum(&enumerator));
  Check(enumerator.As(&items));
  std::wstring models;
  for (VARIANT item{}; items->Next(1, &item, nullptr) == S_OK; VariantClear(&item)) {
    ComPtr<_CInstrument> instrument;
    Text model;
    Check(V_DISPATCH(&item)->QueryInterface(IID_PPV_ARGS(&instrument)));
    Check(instrument->get_Model(model.out()));
    models += model.c_str();
  }
  return models;
}

void ShowCollection() {
  const auto instruments = Make<_CInstruments>(__uuidof(CInstruments));
  const Text key(L"rack");
  Check(instruments->AddReference(MakeInstrument(L"A").Get(), nullptr));
  Check(instruments->AddReference(MakeInstrument(L"B").Get(), key.get()));
  LONG count = 0;
  Check(instruments->get_Count(&count));
  Expect("Count", count == 2);
  Expect("Item(1)", ModelOf(instruments.Get(), Argument(1)) == L"A");
  Expect("Item by key", ModelOf(instruments.Get(), Argument(key)) == L"B");
  Expect("enumeration", Models(instruments.Get()) == L"AB");
  Check(instruments->Remove(Argument(1)));
  Expect("Remove", Models(instruments.Get()) == L"B");
  ComPtr<_CInstrument> none;
  Expect("a wrong position", instruments->Item(Argument(9), &none) == static_cast<HRESULT>(0x800A0009));
}

void ShowEnumerations() {
  Expect("names",
         csTCPIP == 1 && csNone == -1 && sckUDPProtocol == 1 && cfrInvalidIPAddress == 11 && toNone == 0);
  const auto comm = MakeCommObj();
  auto style = static_cast<ECommStyle>(7);
  Expect("a style that there is not",
         comm->put_CommStyle(&style) == static_cast<HRESULT>(ERR_COMM_STYLE_NOT_SUPPORTED));
  Check(comm->get_CommStyle(&style));
  Expect("the style before", style == csTCPIP);
}

// Only late-bound calls leave something out.
void ShowOptional() {
  const auto comm = Connected();
  const Text first(L"ECHO a"), second(L"ECHO b"), address(L"01"), value(L"2.5");
  Text result;
  Expect("Query with two", Call(comm.Get(), {L"Query"}, {Argument(first), Argument(result.out())}));
  Expect("its reply", result.c_str() == std::wstring(L"ECHO a"));
  Expect("Query with four",
         Call(comm.Get(), {L"Query"},
              {Argument(value), Argument(address), Argument(second), Argument(result.out())}));
  Expect("its reply too", result.c_str() == std::wstring(L"ECHO b"));
  const auto instruments = Make<_CInstruments>(__uuidof(CInstruments));
  const auto instrument = MakeInstrument(L"A");
  VARIANT reference;
  V_VT(&reference) = VT_DISPATCH;
  V_DISPATCH(&reference) = instrument.Get();
  Call(instruments.Get(), {L"AddReference"}, {reference});
  Expect("AddReference without a key", Models(instruments.Get()) == L"A");
  const auto tcp = TransportOf(comm.Get());
  VARIANT_BOOL done = VARIANT_FALSE;
  Check(tcp->Initialize(&done));
  Expect("WriteLine without anything", Call(tcp.Get(), {L"WriteLine"}, {}));
  Check(tcp->Uninitialize(&done));
}

void ShowNamed() {
  const Text cmd(L"ECHO b");
  Text result;
  Expect("Query",
         Call(Connected().Get(), {L"Query", L"cmd", L"result"}, {Argument(cmd), Argument(result.out())}));
  Expect("its reply", result.c_str() == std::wstring(L"ECHO b"));
}

void ShowObjects() {
  for (int i = 0; i < 1000; ++i) MakeCommObj();
  ExpectReply(Connected().Get(), L"*IDN?", kIdentity);
}

void Show(const char* name, const std::function<void()>& steps) {
  try {
    steps();
    std::printf("PASS %s\n", name);
  } catch (const std::exception& failure) {
    std::string text = failure.what();
    for (char& letter : text) letter = letter == '\n' ? ' ' : letter;
    std::printf("FAIL %s: %s\n", name, text.c_str());
  }
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
  host = Argument(argc, argv, 1, L"127.0.0.1");
  port = static_cast<SHORT>(std::stoi(Argument(argc, argv, 2, L"10001")));
  return Run([] {
    Show("creation", ShowCreation);
    Show("settings", ShowSettings);
    Show("query", ShowQuery);
    Show("bytes", ShowBytes);
    Show("error", ShowError);
    Show("events", ShowEvents);
    Show("abort", ShowAbort);
    Show("collection", ShowCollection);
    Show("enumerations", ShowEnumerations);
    Show("optional", ShowOptional);
    Show("named", ShowNamed);
    Show("objects", ShowObjects);
    std::printf("DONE\n");
    return 0;
  });
}
