// Registered for the present user and taken away again; what is registered for the machine is not touched.
#include "tests/clients/library_module.h"
#include "tests/faults/scenarios.h"

namespace kesp::faults {

namespace {

constexpr wchar_t kForTheUser[] = L"user";

class Registration : public Scenario {
 public:
  void Run(Verdict& verdict) override {
    verdict.SucceededBarely(library_.Install(TRUE, kForTheUser), "DllInstall");
    verdict.SucceededBarely(library_.Install(FALSE, kForTheUser), "DllInstall");
  }
  void WorkAgain(Verdict& verdict) override { Run(verdict); }

 private:
  clients::LibraryModule library_;
};

}  // namespace

std::unique_ptr<Scenario> MakeRegistration() {
  return std::make_unique<Registration>();
}

}  // namespace kesp::faults
