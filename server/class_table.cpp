// The table of creatable classes.
#include "server/class_table.h"

#include <algorithm>
#include <iterator>

#include "KespCommObj.h"
#include "server/com_port_class.h"
#include "server/comm_obj_class.h"
#include "server/ieee_class.h"
#include "server/instrument_class.h"
#include "server/instruments_class.h"
#include "server/tcp_class.h"

namespace kesp {

namespace {

template <class Class>
IUnknown* Create() {
  return static_cast<IDispatch*>(new Class);
}

const CreatableClass kClasses[] = {
    {__uuidof(::CKespCommObj), L"CKespCommObj", L"Kesp communication object", Create<CommObjClass>},
    {__uuidof(::CKespCOMPort3), L"CKespCOMPort3", L"Kesp RS-232 transport", Create<ComPortClass>},
    {__uuidof(::CKespTCP), L"CKespTCP", L"Kesp TCP/IP transport", Create<TcpClass>},
    {__uuidof(::CKespIEEE), L"CKespIEEE", L"Kesp IEEE-488 transport", Create<IeeeClass>},
    {__uuidof(::CInstrument), L"CInstrument", L"Kesp instrument", Create<InstrumentClass>},
    {__uuidof(::CInstruments), L"CInstruments", L"Kesp collection of instruments", Create<InstrumentsClass>},
};

}  // namespace

const CreatableClass* begin_classes() {
  return std::begin(kClasses);
}
const CreatableClass* end_classes() {
  return std::end(kClasses);
}

const CreatableClass* FindClass(REFCLSID clsid) {
  const auto* found = std::find_if(begin_classes(), end_classes(),
                                   [&](const CreatableClass& entry) { return entry.clsid == clsid; });
  return found == end_classes() ? nullptr : found;
}

}  // namespace kesp
