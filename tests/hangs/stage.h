// A communication object and what is done with it over every transport.
#pragma once

#include <string>

#include "KespCommObj.h"
#include "tests/hangs/outcome.h"

namespace kesp::hangs {

class Stage {
 public:
  virtual ~Stage() = default;
  Stage(const Stage&) = delete;
  Stage& operator=(const Stage&) = delete;

  Outcome Query(const std::string& cmd) {
    const clients::Text text(TextOfBytes(cmd));
    return WithStatus(Reading([&](BSTR* reply, VARIANT_BOOL* answer) {
      return comm->Query(reply, text.get(), nullptr, nullptr, answer);
    }));
  }
  Outcome QueryBinary(const std::string& cmd) {
    const clients::Text text(TextOfBytes(cmd));
    return WithStatus(ReadingBytes([&](VARIANT* reply, VARIANT_BOOL* answer) {
      return comm->QueryBinary(reply, text.get(), nullptr, nullptr, answer);
    }));
  }
  Outcome Update(const std::string& cmd) {
    const clients::Text text(TextOfBytes(cmd));
    return WithStatus(
        Answering([&](VARIANT_BOOL* answer) { return comm->Update(text.get(), nullptr, nullptr, answer); }));
  }
  // Asks with *IDN? only.
  Outcome DetectInstrument() {
    return Reading(
        [&](BSTR* reply, VARIANT_BOOL* answer) { return comm->DetectInstrument(reply, dlSCPIOnly, answer); });
  }
  // The style that it has is assigned once more.
  Outcome AssignStyle() {
    ECommStyle style = style_;
    return Doing([&] { return comm->put_CommStyle(&style); });
  }
  // The client's references go.
  Outcome ReleaseAll() {
    return Doing([&] {
      ReleaseTransport();
      comm.Reset();
      return S_OK;
    });
  }

  virtual Outcome WriteLine(const std::string& cmd) = 0;
  virtual Outcome ReadLine() = 0;
  // One command and its reply on the open connection.
  Outcome Exchange(const std::string& cmd) {
    const Outcome sent = WriteLine(cmd);
    return sent.result == "True" ? ReadLine() : sent;
  }

  clients::ComPtr<_CKespCommObj> comm = clients::Create<_CKespCommObj>(__uuidof(CKespCommObj));

 protected:
  explicit Stage(ECommStyle style) : style_(style) {
    EXPECT_EQ(clients::WriteByReference(comm, &_CKespCommObj::put_CommStyle, style), S_OK);
  }

  template <class Interface>
  clients::ComPtr<Interface> Transport() const {
    clients::ComPtr<Interface> transport;
    EXPECT_EQ(clients::ReadObject(comm, &_CKespCommObj::get_CommObject).As(&transport), S_OK);
    return transport;
  }

 private:
  virtual void ReleaseTransport() = 0;

  // The status of an operation goes along when it failed.
  Outcome WithStatus(Outcome outcome) const {
    if (outcome.result == "False")
      outcome.result = FalseWith(clients::Read(comm, &_CKespCommObj::get_CommError));
    return outcome;
  }

  const ECommStyle style_;
};

}  // namespace kesp::hangs
