#include "server/Installation.h"

#include <exception>

#include "com/Module.h"
#include "com/Text.h"
#include "ui/MessageBox.h"

namespace morvelan::server {
namespace {

constexpr HRESULT kRegistrationFailed = static_cast<HRESULT>(0x80040201u);

/// Whether the registering program was told to be silent, as `regsvr32 /s` is.
bool IsSilent(const std::string& commandLine) {
  const std::string padded = commandLine + ' ';
  for (const char* option : {" /s ", " -s "}) {
    const std::string wanted = option;
    for (std::size_t i = 0; i + wanted.size() <= padded.size(); ++i)
      if (com::EqualNoCase(std::string_view(padded).substr(i, wanted.size()), wanted)) return true;
  }
  return false;
}

}  // namespace

HRESULT Install(void (*step)()) {
  try {
    step();
    return S_OK;
  } catch (const std::exception& error) {
    if (!IsSilent(com::ProcessCommandLine()))
      ui::ShowMessageBox(error.what(), "MORVELAN registration:", ui::Icon::kStop);
    return kRegistrationFailed;
  } catch (...) {
    return E_UNEXPECTED;
  }
}

}  // namespace morvelan::server
