// Where the system knows no COM codes, the texts that Windows gives to those a host is likely to return.

#include "com/SystemMessage.h"

#include <algorithm>
#include <iterator>

namespace morvelan::com {
namespace {

struct CodeText {
  HRESULT code;
  const char* text;
};

constexpr CodeText kTexts[] = {
    {E_NOTIMPL, "Not implemented"},
    {E_NOINTERFACE, "No such interface supported"},
    {E_POINTER, "Invalid pointer"},
    {E_ABORT, "Operation aborted"},
    {E_FAIL, "Unspecified error"},
    {E_UNEXPECTED, "Catastrophic failure"},
    {E_ACCESSDENIED, "Access is denied."},
    {E_OUTOFMEMORY, "Not enough memory resources are available to complete this operation."},
    {E_INVALIDARG, "The parameter is incorrect."},
    {DISP_E_UNKNOWNINTERFACE, "Unknown interface."},
    {DISP_E_MEMBERNOTFOUND, "Member not found."},
    {DISP_E_PARAMNOTFOUND, "Parameter not found."},
    {DISP_E_TYPEMISMATCH, "Type mismatch."},
    {DISP_E_UNKNOWNNAME, "Unknown name."},
    {DISP_E_BADVARTYPE, "Bad variable type."},
    {DISP_E_EXCEPTION, "Exception occurred."},
    {DISP_E_OVERFLOW, "Out of present range."},
    {DISP_E_BADINDEX, "Invalid index."},
    {DISP_E_BADPARAMCOUNT, "Invalid number of parameters."},
    {CLASS_E_CLASSNOTAVAILABLE, "ClassFactory cannot supply requested class"},
    {REGDB_E_CLASSNOTREG, "Class not registered"},
};

}  // namespace

std::optional<std::string> SystemMessage(HRESULT code) {
  const auto* found =
      std::find_if(std::begin(kTexts), std::end(kTexts), [&](const CodeText& t) { return t.code == code; });
  if (found == std::end(kTexts)) return std::nullopt;
  return found->text;
}

}  // namespace morvelan::com
