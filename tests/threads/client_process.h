// A process of a client beside this test, and the folder in which it leaves its files.
#pragma once

#include <windows.h>

#include <string>

namespace kesp::threads {

// Ended at the latest with this.
class ClientProcess {
 public:
  // Starts a program of the folder of this one.
  ClientProcess(const std::wstring& program, const std::wstring& arguments);
  ~ClientProcess();
  ClientProcess(const ClientProcess&) = delete;
  ClientProcess& operator=(const ClientProcess&) = delete;

  // Its exit code; STILL_ACTIVE when it has not ended by then.
  DWORD CodeWithin(DWORD milliseconds) const;
  void Terminate(UINT code) const { TerminateProcess(process_, code); }
  HANDLE handle() const { return process_; }

 private:
  HANDLE process_ = nullptr;
};

// While it lives, the temporary folder of this process and of those that it starts. Goes with all that is in
// it.
class WorkingFolder {
 public:
  WorkingFolder();
  ~WorkingFolder();
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

  const std::wstring& path() const { return path_; }
  std::wstring File(const std::wstring& name) const { return path_ + L"\\" + name; }

 private:
  std::wstring outer_;
  std::wstring path_;
};

}  // namespace kesp::threads
