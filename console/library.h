// The library as the commands see it: one instrument at a time, by the members of CKespCommObj and of its
// transports.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "console/address.h"

namespace kesp::console {

// An operation that did not succeed. what() is the description, as the library gives it.
class LibraryError : public std::runtime_error {
 public:
  // status: the name of CommError ("cfrTimeout"), or of the error number where a call was refused
  // ("ERR_INVALID_PORT", or the number in hexadecimal); source: CommErrorSource, or the error's.
  LibraryError(std::string status, std::string source, const std::string& description)
      : std::runtime_error(description), status_(std::move(status)), source_(std::move(source)) {}
  const std::string& status() const { return status_; }
  const std::string& source() const { return source_; }

  // How many bytes of a reply had come; nothing where that is not known.
  std::optional<std::int64_t> received;
  // The last ones of them in hexadecimal, where they are known.
  std::string last_received;
  // What helps, in one sentence; empty where that is not known.
  std::string hint;

 private:
  std::string status_;
  std::string source_;
};

// The library cannot be had at all. what() tells why, and what helps: the exit code is kExitNoLibrary.
class NoLibrary : public LibraryError {
 public:
  explicit NoLibrary(const std::string& why) : LibraryError("", "", why) {}
};

// What all commands that talk may ask for besides the address.
struct Tuning {
  std::optional<int>
      timeout_ms;  // TimeOutmSecs, TimeOut, or the next longer TimeOutSecs; nothing: as the library has it
  std::optional<int> gap_ms;  // BinaryTimeoutms
  bool crlf_as_is = false;    // StripCRLF False
  bool keep_open = false;     // AutoClose False; a port that has failed is opened anew
  std::string trace;          // DebugFilename with Debugging True; empty: none
};

// One step of a detection. Returns false to set Abort.
struct DetectionStep {
  std::string where;    // "9600 baud", "192.168.0.10", "gpib:7"
  std::string command;  // what is about to be sent
  int number = 0;       // from 1
  int of = 0;           // how many there can be; 0 where that is not known
};
using OnDetectionStep = std::function<bool(const DetectionStep&)>;

// So many characters have been received; told at each part, and from time to time. Returns false to set
// Abort.
using OnTransfer = std::function<bool(std::int64_t received)>;

// A long transfer, to its end or as far as it came.
struct Transfer {
  std::string bytes;
  bool aborted = false;                 // a step was answered with false
  std::optional<LibraryError> failure;  // the port failed in the middle
};

enum class DetectLevel { kScpi = 1, kCommon = 2, kAll = 3 };

// An instrument at an address. Texts are UTF-8. Members throw LibraryError.
class Instrument {
 public:
  virtual ~Instrument() = default;
  virtual std::string Query(const std::string& cmd) = 0;
  virtual std::string QueryBinary(const std::string& cmd) = 0;  // the bytes
  virtual void Update(const std::string& cmd) = 0;
  // The answer; nothing when nobody answered or a step was answered with false.
  virtual std::optional<std::string> Detect(DetectLevel level, const OnDetectionStep& on_step) = 0;
  // COM ports only: a long transfer, begun by `cmd` unless that is empty. Throws where nothing came.
  virtual Transfer Download(const std::string& cmd, const OnTransfer& on_transfer) = 0;
  // The settings dialog: true when it was confirmed. Not with the GPIB, which has none.
  virtual bool Edit() = 0;
  // The settings as they are now, after a detection or the dialog too.
  virtual Address address() = 0;
  virtual void SetTimeout(int milliseconds) = 0;
  // How long the reply of the last Query took, from when its command had been sent; nothing where that is not
  // known.
  virtual std::optional<std::chrono::milliseconds> waited() const = 0;
};

struct FoundInstrument {
  std::string address;  // in dotted form
  std::string model;
  std::string serial;
};

class Library {
 public:
  virtual ~Library() = default;
  // An address of the form "usb:..." has been replaced by its COM port. Opens nothing yet.
  virtual std::unique_ptr<Instrument> At(const Address& address, const Tuning& tuning) = 0;
  // All instruments on the local network; a step tells which one is asked. After a step that was answered
  // with false nobody further is asked: those who were not have an address only.
  virtual std::vector<FoundInstrument> Discover(const std::string& trace, const OnDetectionStep& on_step) = 0;
};

}  // namespace kesp::console
