// The doctor's rules about the registry.
#include "console/doctor.h"
#include "console/served_library.h"
#include "console/width_text.h"

namespace kesp::console {
namespace {

// One width as its clients see it.
class Registered {
 public:
  Registered(Machine& machine, int bits)
      : machine_(machine),
        bits_(bits),
        system_(machine.System()),
        entries_(machine.RegistrationsFor(bits)),
        delivered_(machine.DeliveredLibrary(bits)) {}

  Findings All() {
    const ServedLibrary ordinary = LibraryFor(Client::kOrdinary, entries_);
    Findings findings;
    findings.push_back(ordinary.IsNone() ? NotRegistered() : Of(Subject(), ordinary));
    const ServedLibrary elevated = LibraryFor(Client::kElevated, entries_);
    if (!ordinary.IsNone()) {
      findings.push_back(Elevated(ordinary, elevated));
      findings.push_back(TypeLibrary(ordinary));
    }
    return findings;
  }

 private:
  std::string Subject() const { return WidthText(bits_) + " clients"; }

  std::string Register(Hive hive = Hive::kAllUsers) const {
    return RegisterRemedy(system_, bits_, hive, delivered_);
  }

  Finding NotRegistered() const {
    const int other = 96 - bits_;
    const bool has_other =
        system_.both_widths && !LibraryFor(Client::kOrdinary, machine_.RegistrationsFor(other)).IsNone();
    const std::string text =
        "get \"class not registered\" (80040154; 429 in Visual Basic): no " + WidthText(bits_) +
        " library is registered" +
        (has_other ? "; the " + WidthText(other) + " one serves " + WidthText(other) + " programs only" : "");
    return has_other ? Warning(Subject(), text, Register()) : Fault(Subject(), text, Register());
  }

  Finding Of(const std::string& subject, const ServedLibrary& served) const {
    const std::string& library = served.libraries.front();
    if (served.libraries.size() > 1) {
      return Fault(subject, "get their classes from several files: " + Joined(served.libraries),
                   Register(served.hive));
    }
    if (!served.missing.empty()) {
      return Fault(subject, library + " is registered in part; missing: " + Joined(served.missing),
                   Register(served.hive));
    }
    const auto facts = machine_.FactsOf(library);
    if (!facts)
      return Fault(subject, library + " is registered, but there is no such file", Register(served.hive));
    if (facts->bits != bits_) {
      return Fault(subject, library + " is registered, but is no " + WidthText(bits_) + " library",
                   Register(served.hive));
    }
    return Compared(subject, served, *facts);
  }

  // With the library that was delivered with this program.
  Finding Compared(const std::string& subject, const ServedLibrary& served, const FileFacts& facts) const {
    const std::string& library = served.libraries.front();
    const std::string text = "load " + library + " " + facts.version + ", registered for " +
                             (served.hive == Hive::kAllUsers ? "all users" : "this user");
    const auto own = machine_.FactsOf(delivered_);
    if (!own) return Well(subject, text);
    if (IsSamePath(library, delivered_)) return Well(subject, text + "; it was delivered with this kesp");
    if (own->content == facts.content) return Well(subject, text + "; the same as delivered with this kesp");
    return Warning(subject, text + "; not the one delivered with this kesp, " + own->version,
                   IsNewer(own->version, facts.version)
                       ? Register(served.hive)
                       : "to try what clients get, use the kesp.exe beside that library, or this one with "
                         "--registered");
  }

  Finding Elevated(const ServedLibrary& ordinary, const ServedLibrary& elevated) const {
    const std::string subject = Subject() + " as administrator";
    if (elevated.IsNone()) {
      return Warning(
          subject,
          "get \"class not registered\" (80040154): what is registered for one user does not exist for them",
          Register());
    }
    if (!IsSamePath(elevated.libraries.front(), ordinary.libraries.front())) {
      return Warning(subject,
                     "load another library: " + elevated.libraries.front() + ", registered for all users",
                     Register());
    }
    if (ordinary.hive == Hive::kThisUser) return Of(subject, elevated);
    return Well(subject, "load the same");
  }

  // It goes with the library that clients load.
  Finding TypeLibrary(const ServedLibrary& served) const {
    const std::string subject = WidthText(bits_) + " type library";
    const std::string& library = served.libraries.front();
    const auto facts = machine_.FactsOf(library);
    const std::string remedy = facts && facts->bits == bits_
                                   ? RegisterRemedy(system_, bits_, served.hive, library)
                                   : Register(served.hive);
    if (entries_.type_library.empty())
      return Fault(subject, "is not registered: calls between threads and into other programs fail", remedy);
    if (!IsSamePath(entries_.type_library, library))
      return Warning(subject, "is registered from another file: " + entries_.type_library, remedy);
    return Well(subject, "is registered from the same file");
  }

  Machine& machine_;
  int bits_;
  SystemFacts system_;
  Registrations entries_;
  std::string delivered_;
};

}  // namespace

Findings RegistrationFindings(Machine& machine, int bits) {
  return Registered(machine, bits).All();
}

}  // namespace kesp::console
