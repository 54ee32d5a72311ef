// The table of modem lines, and its log.
#include "modem_lines.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace kesp::serial_line {

namespace {

constexpr int kOutputs = TIOCM_DTR | TIOCM_RTS;

class Locked {
 public:
  explicit Locked(pthread_mutex_t& mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
  ~Locked() { pthread_mutex_unlock(&mutex_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  pthread_mutex_t& mutex_;
};

void Log(int number, int outputs) {
  constexpr mode_t kReadableByAll = 0644;
  const char* const path = getenv("KESP_MODEM_LINES_LOG");
  const int file =
      path != nullptr ? open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, kReadableByAll) : -1;
  if (file < 0) return;
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  const long long nanoseconds = now.tv_sec * 1000000000LL + now.tv_nsec;
  // In one piece, so that lines of several processes do not mix.
  char text[96];
  const int length = snprintf(text, sizeof text, "%lld pts/%d DTR=%d RTS=%d\n", nanoseconds, number,
                              (outputs & TIOCM_DTR) != 0 ? 1 : 0, (outputs & TIOCM_RTS) != 0 ? 1 : 0);
  if (write(file, text, static_cast<size_t>(length)) != length) perror("KESP_MODEM_LINES_LOG");
  close(file);
}

}  // namespace

int ModemLines::Get(int number) {
  const Locked locked(mutex_);
  const Line* line = Find(number);
  return line != nullptr ? line->outputs : 0;
}

void ModemLines::Change(int number, int mask, int value) {
  const Locked locked(mutex_);
  Line* line = FindOrAdd(number);
  if (line == nullptr) return;
  const int changed = mask & kOutputs;
  const int outputs = (line->outputs & ~changed) | (value & changed);
  if (outputs != line->outputs) Log(number, outputs);
  line->outputs = outputs;
}

void ModemLines::Drop(int number) {
  const Locked locked(mutex_);
  Line* line = Find(number);
  if (line == nullptr) return;
  if (line->outputs != 0) Log(number, 0);
  *line = lines_[count_ - 1];
  __atomic_store_n(&count_, count_ - 1, __ATOMIC_RELEASE);
}

ModemLines::Line* ModemLines::Find(int number) {
  for (int i = 0; i < count_; ++i) {
    if (lines_[i].number == number) return &lines_[i];
  }
  return nullptr;
}

ModemLines::Line* ModemLines::FindOrAdd(int number) {
  Line* line = Find(number);
  if (line != nullptr || count_ == kCapacity) return line;
  line = &lines_[count_];
  *line = {number, 0};
  __atomic_store_n(&count_, count_ + 1, __ATOMIC_RELEASE);
  return line;
}

}  // namespace kesp::serial_line
