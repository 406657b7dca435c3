#include "host/objects/ValueStream.h"

#include "com/Text.h"

namespace morvelan::host {

ValueStream::ValueStream(std::string streamName, std::string streamDescription,
                         std::vector<com::Ref<StreamParameter>> values)
    : Implements(std::move(streamName), std::move(streamDescription)), parameters(std::move(values)) {}

HRESULT ValueStream::Item(VARIANT id, IDispatch** item) {
  if (!item) return E_POINTER;
  *item = nullptr;
  return Guard("Item", "ICapeCollection", [&] { *item = parameters[Find(id)].As<IDispatch>().Detach(); });
}

std::size_t ValueStream::Find(const VARIANT& id) const {
  const VARIANT v = com::Borrow(id);
  if (v.vt == VT_EMPTY) throw HostError(kECapeInvalidArgument, "the name or the number of a value is expected");
  if (v.vt != VT_BSTR) {
    const std::int32_t index = com::ReadInteger(v);
    if (index < 1 || static_cast<std::size_t>(index) > parameters.size())
      throw HostError(kECapeOutOfBounds, "stream \"" + Name() + "\" has " + std::to_string(parameters.size()) +
                                             " values, number " + std::to_string(index) + " was asked for");
    return static_cast<std::size_t>(index) - 1;
  }
  const std::string wanted = com::ToUtf8(v.bstrVal);
  for (std::size_t i = 0; i < parameters.size(); ++i)
    if (com::EqualNoCase(parameters[i]->Name(), wanted)) return i;
  throw HostError(kECapeInvalidArgument, "stream \"" + Name() + "\" has no value \"" + wanted + '"');
}

}  // namespace morvelan::host
