#include "server/RegistryWriter.h"

#include <optional>
#include <stdexcept>

#include "com/SystemMessage.h"
#include "com/Text.h"

namespace morvelan::server {
namespace {

using com::ToBstr;

[[noreturn]] void Fail(const std::string& what, const std::string& path, LSTATUS status) {
  const HRESULT hr = HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  throw std::runtime_error("The registry key " + path + " can't be " + what + ": " +
                           com::SystemMessage(hr).value_or("error " + std::to_string(status)));
}

/// A key that is open as long as it is wanted.
class OpenKey {
 public:
  OpenKey(HKEY root, const std::string& path, REGSAM access) {
    status = RegOpenKeyExW(root, ToBstr(path).Get(), 0, access, &key);
  }
  OpenKey(const OpenKey&) = delete;
  OpenKey& operator=(const OpenKey&) = delete;
  ~OpenKey() {
    if (status == ERROR_SUCCESS) RegCloseKey(key);
  }

  HKEY key = nullptr;
  LSTATUS status;
};

std::optional<std::wstring> ReadText(HKEY key, const com::Bstr& name) {
  DWORD bytes = 0;
  if (RegGetValueW(key, nullptr, name.Get(), RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
    return std::nullopt;
  std::wstring text(bytes / sizeof(wchar_t), L'\0');
  if (RegGetValueW(key, nullptr, name.Get(), RRF_RT_REG_SZ, nullptr, text.data(), &bytes) != ERROR_SUCCESS)
    return std::nullopt;
  return text.c_str();
}

LSTATUS WriteText(HKEY key, const com::Bstr& name, const wchar_t* text) {
  const auto bytes = static_cast<DWORD>((std::wstring(text).size() + 1) * sizeof(wchar_t));
  return RegSetValueExW(key, name.Get(), 0, REG_SZ, reinterpret_cast<const BYTE*>(text), bytes);
}

}  // namespace

RegistryWriter::RegistryWriter(HKEY rootKey, std::string rootFolder) : root(rootKey), folder(std::move(rootFolder)) {}

RegistryWriter::~RegistryWriter() {
  for (auto step = undo.rbegin(); step != undo.rend(); ++step) TakeBack(*step);
}

void RegistryWriter::CreateKey(const std::string& key) {
  const std::string path = folder + "\\" + key;
  // Level by level, so that each key that is new can be taken back.
  for (std::size_t end = path.find('\\'); end != std::string::npos; end = path.find('\\', end + 1))
    MakeKey(path.substr(0, end));
  MakeKey(path);
}

void RegistryWriter::MakeKey(const std::string& path) {
  HKEY key = nullptr;
  DWORD disposition = 0;
  const LSTATUS status =
      RegCreateKeyExW(root, ToBstr(path).Get(), 0, nullptr, 0, KEY_READ, nullptr, &key, &disposition);
  if (status != ERROR_SUCCESS) Fail("made", path, status);
  RegCloseKey(key);
  if (disposition == REG_CREATED_NEW_KEY) undo.push_back({path, {}, true, false, {}});
}

void RegistryWriter::SetText(const std::string& key, const std::string& name, const std::string& text) {
  CreateKey(key);
  const std::string path = folder + "\\" + key;
  const OpenKey open(root, path, KEY_QUERY_VALUE | KEY_SET_VALUE);
  if (open.status != ERROR_SUCCESS) Fail("opened", path, open.status);
  const com::Bstr wideName = ToBstr(name);
  const auto old = ReadText(open.key, wideName);
  undo.push_back({path, name, false, old.has_value(), old.value_or(L"")});
  const LSTATUS status = WriteText(open.key, wideName, ToBstr(text).Get());
  if (status != ERROR_SUCCESS) Fail("written", path, status);
}

void RegistryWriter::TakeBack(const Step& step) {
  if (step.madeKey) {
    RegDeleteKeyW(root, ToBstr(step.path).Get());
    return;
  }
  const OpenKey open(root, step.path, KEY_SET_VALUE);
  const com::Bstr name = ToBstr(step.name);
  if (open.status != ERROR_SUCCESS) return;
  if (step.hadText)
    WriteText(open.key, name, step.oldText.c_str());
  else
    RegDeleteValueW(open.key, name.Get());
}

void RemoveKey(HKEY root, const std::string& path) {
  const LSTATUS status = RegDeleteTreeW(root, ToBstr(path).Get());
  if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) Fail("removed", path, status);
}

}  // namespace morvelan::server
