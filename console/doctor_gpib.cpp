// The doctor's rules about the GPIB's driver.
#include "console/doctor.h"
#include "console/width_text.h"

namespace kesp::console {
namespace {

std::string Described(const GpibFile& file) {
  return file.path + (file.version.empty() ? "" : " " + file.version);
}

// What else lies about; the library does not get so far.
std::string Others(const std::vector<GpibFile>& files) {
  std::string text;
  for (std::size_t i = 1; i < files.size(); ++i)
    text += (text.empty() ? "; not taken: " : ", ") + Described(files[i]);
  return text;
}

Finding None(const std::string& subject, int bits) {
  return Warning(subject, "no driver found: " + Joined(GpibFileNames(bits), " or "),
                 "for IEEE-488 install the driver of the board's maker, for " + WidthText(bits) +
                     " programs; nothing is to be done without IEEE-488");
}

}  // namespace

Findings GpibFindings(Machine& machine, int bits) {
  const std::string subject = WidthText(bits) + " GPIB driver";
  const std::vector<GpibFile> files = machine.GpibFiles(bits);
  if (files.empty()) return {None(subject, bits)};
  const GpibFile& taken = files.front();
  const std::string others = Others(files);
  if (taken.bits != bits) {
    return {Fault(subject, taken.path + " is no " + WidthText(bits) + " library" + others,
                  "install the driver of the board's maker for " + WidthText(bits) +
                      " programs in place of that file")};
  }
  if (!taken.missing.empty()) {
    return {Fault(subject, Described(taken) + " lacks " + Joined(taken.missing) + others,
                  "install a newer driver of the board's maker, or one with the interface of NI-488.2")};
  }
  return {Well(subject, Described(taken) + " has each of the " +
                            std::to_string(NeededGpibEntryPoints().size()) + " entry points" + others)};
}

}  // namespace kesp::console
