// The states of the seven classes.
#include "tests/variants/harmless_state.h"

#include "KespCommObj.h"

namespace kesp::variants {

namespace {

using clients::Text;

constexpr short kTimeoutMs = 5;
// Where a reply comes through a COM port that is there, also on a busy machine.
constexpr short kPortTimeoutMs = 40;
constexpr short kDeviceOnBus = 5;
// Nobody has so many ports.
constexpr short kPortThatIsNotThere = 250;
constexpr wchar_t kLogFile[] = L"random.log";

template <class Interface>
ComPtr<Interface> As(IUnknown* object) {
  ComPtr<Interface> found;
  if (object != nullptr) object->QueryInterface(IID_PPV_ARGS(found.GetAddressOf()));
  return found;
}

void MendNetwork(_CKespTCP* tcp, const Device& device) {
  Text address;
  tcp->get_IPAddress(address.out());
  const std::wstring host = address.str();
  if (host != device.host && host != L"0.0.0.0" && !host.empty()) tcp->put_IPAddress(Text(device.host).get());
  short port = 0;
  tcp->get_Port(&port);
  if (port != device.port) tcp->put_Port(device.port);
  short timeout = 0;
  tcp->get_TimeOutmSecs(&timeout);
  if (timeout < 1 || timeout > kTimeoutMs) tcp->put_TimeOutmSecs(kTimeoutMs);
  // By datagrams it would look for instruments in the whole network.
  tcp->put_Protocol(sckTCPProtocol);
}

short TimeoutAt(short own_port) {
  return own_port == kNoPort ? kTimeoutMs : kPortTimeoutMs;
}

void MendSerial(_CKespCOMPort3* port, short own) {
  short number = 0;
  port->get_Port(&number);
  if (number < kPortThatIsNotThere && number != own) port->put_Port(kPortThatIsNotThere);
  port->put_TimeOut(TimeoutAt(own));
  if (own == kNoPort) return;
  // A search tries all rates between the limits, which must enclose the rate at any moment.
  port->put_MaxBaudRate(br921600);
  port->put_MinBaudRate(br150);
  port->put_BaudRate(br9600);
  port->put_MinBaudRate(br9600);
  port->put_MaxBaudRate(br9600);
}

void MendBus(_CKespIEEE* bus) {
  ETimeOutSecs timeout{};
  bus->get_TimeOutSecs(&timeout);
  if (timeout < to10us || timeout > to30ms) bus->put_TimeOutSecs(to10ms);
}

void Mend(IUnknown* object, const Device& device, short own_port) {
  if (const auto comm = As<_CKespCommObj>(object)) {
    long timeout = 0;
    comm->get_BinaryTimeoutms(&timeout);
    const bool is_short = timeout < TimeoutAt(own_port) && own_port != kNoPort;
    if (timeout < 0 || is_short || timeout > TimeoutAt(own_port))
      comm->put_BinaryTimeoutms(TimeoutAt(own_port));
    ComPtr<IDispatch> transport;
    comm->get_CommObject(&transport);
    Mend(transport.Get(), device, own_port);
  }
  if (const auto tcp = As<_CKespTCP>(object)) MendNetwork(tcp.Get(), device);
  if (const auto port = As<_CKespCOMPort3>(object)) MendSerial(port.Get(), own_port);
  if (const auto bus = As<_CKespIEEE>(object)) MendBus(bus.Get());
}

void FillCollection(_CInstruments* collection, RandomSource& random) {
  for (unsigned left = random.Below(4); left > 0; --left) {
    ComPtr<IUnknown> made;
    CoCreateInstance(__uuidof(CInstrument), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(made.GetAddressOf()));
    const auto instrument = As<_CInstrument>(made.Get());
    instrument->put_Model(Text(L"model " + std::to_wstring(left)).get());
    collection->AddReference(instrument.Get(), Text(left == 2 ? L"KEY" : L"").get());
  }
}

void StartTransport(IUnknown* object, RandomSource& random, const Device& device, short own_port) {
  if (const auto tcp = As<_CKespTCP>(object)) {
    tcp->put_LogFilename(Text(kLogFile).get());
    if (!random.OneIn(3)) tcp->put_IPAddress(Text(device.host).get());
    tcp->put_TerminateOnEOS(random.OneIn(2) ? VARIANT_TRUE : VARIANT_FALSE);
    ComPtr<_CInstruments> devices;
    tcp->get_Devices(&devices);
    FillCollection(devices.Get(), random);
  }
  if (const auto port = As<_CKespCOMPort3>(object)) {
    port->put_LogFilename(Text(kLogFile).get());
    if (own_port != kNoPort) {
      port->put_Port(own_port);
      port->put_UseRedirector(VARIANT_TRUE);
    }
  }
  if (const auto bus = As<_CKespIEEE>(object)) {
    bus->put_LogFilename(Text(kLogFile).get());
    bus->put_PrimaryAddress(kDeviceOnBus);
    bus->put_EOSChar(Text(L"10").get());
  }
}

}  // namespace

void MakeReady(const Side& side, RandomSource& random, const Device& device) {
  if (const auto comm = As<_CKespCommObj>(side.object())) {
    comm->put_DebugFilename(Text(kLogFile).get());
    constexpr ECommStyle kStyles[] = {csTCPIP, csTCPIP, csIEEE, csRS232, csNone};
    const ECommStyle chosen = random.Pick(kStyles);
    for (ECommStyle style : {csTCPIP, csIEEE, side.port() != kNoPort ? csRS232 : chosen}) {
      comm->put_CommStyle(&style);
      ComPtr<IDispatch> transport;
      comm->get_CommObject(&transport);
      StartTransport(transport.Get(), random, device, side.port());
    }
  }
  if (const auto collection = As<_CInstruments>(side.object())) FillCollection(collection.Get(), random);
  StartTransport(side.object(), random, device, side.port());
  MakeHarmless(side, device);
}

void MakeHarmless(const Side& side, const Device& device) {
  Mend(side.object(), device, side.port());
}

void ForgetReplies(IUnknown* object) {
  if (As<_CKespIEEE>(object) == nullptr && As<_CKespCommObj>(object) == nullptr) return;
  ComPtr<IUnknown> made;
  CoCreateInstance(__uuidof(CKespIEEE), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(made.GetAddressOf()));
  const auto bus = As<_CKespIEEE>(made.Get());
  VARIANT_BOOL answer = VARIANT_FALSE;
  bus->put_PrimaryAddress(kDeviceOnBus);
  bus->put_ClearDevice(VARIANT_TRUE);
  bus->Initialize(&answer);
  bus->Uninitialize(&answer);
  SetErrorInfo(0, nullptr);
}

void RenewBus() {
  using Load = int __stdcall(const char* json, char* message, long size);
  const HMODULE driver = LoadLibraryExW(L"Gpib-32.dll", nullptr, LOAD_LIBRARY_SEARCH_APPLICATION_DIR);
  const FARPROC load = driver != nullptr ? GetProcAddress(driver, "KespSimulationLoad") : nullptr;
  char message[200];
  // Replies of one byte: both worlds talk to this device, and neither may leave the other half of a reply.
  constexpr char kBus[] =
      R"({"devices": [{"gpib": {"primary": 5}, "reply_terminator": "", "commands": {}, "default": "R"}]})";
  if (load == nullptr) return;
  reinterpret_cast<Load*>(reinterpret_cast<void*>(load))(kBus, message, sizeof message);
  // It has forgotten this thread, too, and says so to the first call.
  ComPtr<_CKespIEEE> transport;
  VARIANT_BOOL answer = VARIANT_FALSE;
  CoCreateInstance(__uuidof(CKespIEEE), nullptr, CLSCTX_INPROC_SERVER,
                   IID_PPV_ARGS(transport.GetAddressOf()));
  if (transport == nullptr) return;
  transport->put_PrimaryAddress(kDeviceOnBus);
  for (int i = 0; i < 2; ++i) transport->Initialize(&answer);
  transport->Uninitialize(&answer);
}

}  // namespace kesp::variants
