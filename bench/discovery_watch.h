// A handler of the network transport's events that takes the times of a discovery.
#pragma once

#include <KespCommObj.h>
#include <windows.h>
#include <wrl/client.h>

#include <cstddef>

namespace kesp::bench {

// Listens to a transport for as long as it lives, on the thread of the discovery; one for each discovery.
// Times are those of MicrosecondsNow. Throws std::runtime_error where it cannot listen.
class DiscoveryWatch final : public IDispatch {
 public:
  // Sleeps `pause_ms` when the first answer has arrived, and begins to measure then.
  DiscoveryWatch(IUnknown* transport, DWORD pause_ms);
  ~DiscoveryWatch();
  DiscoveryWatch(const DiscoveryWatch&) = delete;
  DiscoveryWatch& operator=(const DiscoveryWatch&) = delete;

  // Answers to the broadcast, the first and the last of them, and the sum of what each took between its two
  // events.
  std::size_t answers() const { return answers_; }
  double first_answer() const { return first_answer_; }
  double last_answer() const { return last_answer_; }
  double handling() const { return handling_; }

  // Connections to those who answered, the first and the last of them.
  std::size_t connections() const { return connections_; }
  double first_connection() const { return first_connection_; }
  double last_connection() const { return last_connection_; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
  // It belongs to who made it.
  ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
  ULONG STDMETHODCALLTYPE Release() override { return 1; }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
    return E_NOTIMPL;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                   UINT*) override;

 private:
  void OnArrivalBegin();
  void OnArrivalEnd();
  void OnConnect();

  Microsoft::WRL::ComPtr<IConnectionPoint> point_;
  DWORD cookie_ = 0;
  DISPID arrival_begin_ = 0;
  DISPID arrival_end_ = 0;
  DISPID connect_ = 0;
  DWORD pause_ms_;
  std::size_t answers_ = 0;
  double first_answer_ = 0;
  double last_answer_ = 0;
  double this_answer_ = 0;
  double handling_ = 0;
  std::size_t connections_ = 0;
  double first_connection_ = 0;
  double last_connection_ = 0;
};

}  // namespace kesp::bench
