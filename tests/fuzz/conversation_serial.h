// A conversation with the serial transport, and the model that knows what must come of each step.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "serial/kesp_com_port.h"
#include "support/attempt.h"
#include "tests/fuzz/conversation_line.h"

namespace kesp {

// The client, its handlers and the model of one CKespCOMPort3. The model follows the looks at the line: from
// them alone it says when a reply is complete, when a wait is over, and what a read returns.
class SerialConversation : private CKespCOMPort3Events, private LineWatcher {
 public:
  explicit SerialConversation(FuzzInput& input);
  ~SerialConversation() override;

  void Run();

 private:
  enum class Member { kWriteLine, kReadLine, kReadLineBinary, kDownload, kOther };

  // What the transport goes by at the end of a look. A handler may change it later.
  struct Settings {
    std::int32_t time_out_ms = 0;
    bool terminates_on_lf = true;
    bool terminates_on_cr = false;
    bool strips = true;
    bool checks = true;
  };

  // One call of a member that has not returned yet.
  struct Call {
    Member member{};
    std::int32_t silence_ms = 0;  // what ends a binary reply
    bool failed = false;          // the port did
    bool aborted = false;         // by a handler
    bool interfered = false;      // a handler did something
    // Reading.
    int looks = 0;
    std::int64_t start_ms = 0;
    std::int32_t start_tick = 0;
    std::string reply;
    bool has_new_bytes = false;  // at the last look
    Settings settings;
    EInputMode mode = EInputMode::imText;
    // Writing.
    std::vector<std::string> writes;
    std::optional<EKespControllerStyle3> style;
    std::int32_t output_left = -1;
  };

  // The client.
  void Act();
  void Answer();
  void WriteLine();
  void ReadLine();
  void ReadLineBinary();
  void Download();
  void OpenPort();
  void ClosePort();
  void AutoDetect();
  void UseModem();
  void AskPorts();
  void ChangeSettings(int which);
  void ChangeRates();
  void ChangeSetting();
  std::int32_t Change(const std::function<void()>& set);
  void ChangeFlags();
  void QueryAtTheEnd();
  void OnPump();

  // The model.
  Attempt Do(Member member, Call& call, const std::function<bool()>& operation);
  void Note(Call& call) const;
  void BeginWait(Call& call) const;
  static std::int32_t Limit(const Call& call);
  static bool IsOverflowing(const Call& call);
  bool IsTimeOver(const Call& call) const;
  static bool IsTerminated(const Call& call);
  static std::string TrimmedReply(const Call& call);
  static std::optional<std::string> Frame(EKespControllerStyle3 style, const std::wstring& cmd,
                                          const std::wstring& address, const std::wstring& value);
  static void CheckPortFailure(const Attempt& attempt, const Call& call, const std::wstring& member);
  static void CheckReadingFailure(const Attempt& attempt, const Call& call, const std::wstring& member);

  // LineWatcher
  void Reading() override;
  void Taken(const std::string& bytes) override;
  void Counting() override;
  void Counted(std::int32_t count) override;
  void Clearing() override;
  void Writing(std::string_view bytes) override;
  void CountedOutput(std::int32_t count) override;
  void Failing() override;

  // CKespCOMPort3Events
  void DownloadBegin(std::int16_t) override { Answer(); }
  void DownloadUpdate(std::int32_t CharsReceived, bool& Abort) override;
  void DownloadTimeOut(std::int16_t) override { Answer(); }
  void DownloadEnd() override { Answer(); }
  void WriteBegin(const std::wstring& cmd, std::int16_t Port) override;
  void WriteUpdate(std::int16_t OutBufferCount, std::int16_t Port) override;
  void WriteEnd() override;
  void ReadBegin(std::int16_t Port) override;
  void ReadUpdate(std::int32_t CharsReceived, std::int16_t Port) override;
  void ReadTimeOut(std::int16_t) override { Answer(); }
  void ReadInvalidChars(const std::wstring& Buffer, std::int16_t pos, std::int16_t Port) override;
  void AutoDetectBegin(std::int16_t) override;
  void AutoDetectUpdate(std::int16_t Port, EKespBaudRate3 BaudRate, const std::wstring& cmd,
                        bool& Abort) override;
  void AutoDetectEnd() override;

  FuzzInput& input_;
  ConversationWorld world_;
  ConversationLine line_{world_.clock, input_};
  bool calm_ = false;
  bool listens_ = true;
  std::vector<Call*> calls_;
  int detections_ = 0;
  int actions_ = 0;
  std::unique_ptr<CKespCOMPort3> port_;
};

}  // namespace kesp
