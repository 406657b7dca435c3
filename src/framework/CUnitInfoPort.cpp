#include "framework/CUnitInfoPort.h"

#include <algorithm>

#include "errors/HostCall.h"
#include "framework/BaseUnit.h"
#include "framework/CollectionItem.h"
#include "framework/ConnectedCollection.h"

namespace morvelan {
namespace {

constexpr CollectionTexts kTexts = {
    {"invalid parameter specification specification",
     "expected a name or an integer for a parameter specification identifier"},
    {"index out of range for parameter specification specification",
     "index out of range for parameter specification specification"},
    {"empty string", "empty string"},
    {"invalid information descriptor name", "information descriptor name not found"},
    {"failed to obtain interface", "failed to obtain IDispatch interface from parameter description"},
};

Failure ConnectFailure(std::string why) {
  return Failure(UnitError{"failed to connect", std::move(why), {}, {}});
}

}  // namespace

CUnitInfoPort::CUnitInfoPort(const PortDeclaration& declaration, BaseUnit& owner)
    : Implements(declaration, owner) {
  for (const InformationItem& item : declaration.items)
    items.push_back({com::Make<CInfoParamDesc>(item), {}});
}

HRESULT CUnitInfoPort::Count(LONG* count) {
  if (!count) return E_POINTER;
  *count = static_cast<LONG>(items.size());
  return S_OK;
}

HRESULT CUnitInfoPort::Item(VARIANT id, IDispatch** item) {
  if (!item) return E_POINTER;
  *item = nullptr;
  return Guard("Item", "ICapeCollection", [&] {
    const auto nameOf = [&](std::size_t i) { return items[i].description->ComponentName(); };
    *item = HandOut(items[FindItem(id, items.size(), nameOf, kTexts)].description, kTexts);
  });
}

void CUnitInfoPort::ReleaseConnection() {
  for (InformationSlot& item : items) item.id = {};
  CUnitPort::ReleaseConnection();
}

void CUnitInfoPort::Accept(IDispatch* object) {
  const std::string kind = Type() == CAPE_ENERGY ? "energy" : "information";
  HRESULT failure = S_OK;
  const auto dispatch = com::Query<IDispatch>(object, &failure);
  if (!dispatch)
    throw ConnectFailure("failed to obtain IDispatch interface to " + kind +
                         " object: " + ErrorText(object, failure));
  const auto collection = dispatch.As<ICapeCollection>();
  if (!collection)
    throw ConnectFailure("The object that requested connection does not implement ICapeCollection");
  try {
    Match(*collection);
  } catch (...) {
    ReleaseConnection();
    throw;
  }
  Keep(dispatch);
}

void CUnitInfoPort::Match(ICapeCollection& collection) {
  std::vector<ConnectedParameter> parameters = ReadConnectedParameters(collection);
  const bool onlyOne = items.size() == 1 && parameters.size() == 1;
  for (ConnectedParameter& parameter : parameters)
    onlyOne ? MatchOnly(std::move(parameter)) : MatchByName(std::move(parameter));
  for (InformationSlot& item : items)
    if (!item.IsMatched()) MatchUncounted(item, collection);
  for (const InformationSlot& item : items)
    if (!item.IsMatched()) JudgeUnmatched(item);
}

void CUnitInfoPort::MatchOnly(ConnectedParameter parameter) {
  if (MatchesDimensionality(parameter.dimensionality, items.front().description->Dimensions()))
    return MatchItem(items.front(), std::move(parameter));
  Log("Warning: Parameter " + parameter.name +
      " on object matches does not match dimensionality with port parameter");
  Log("Port \"" + ComponentName() + "\" does not predict values for \"" + parameter.name +
      "\"; no suitable information item is present");
}

void CUnitInfoPort::MatchByName(ConnectedParameter parameter) {
  const auto item = std::ranges::find_if(items, [&](const InformationSlot& candidate) {
    return !candidate.IsMatched() && com::EqualNoCase(candidate.description->ComponentName(), parameter.name);
  });
  if (item == items.end())
    Log("Warning: port \"" + ComponentName() + "\" does not have a matching data item for parameter \"" +
        parameter.name + "\"; the data will be ignored.");
  else if (!MatchesDimensionality(parameter.dimensionality, item->description->Dimensions()))
    Log("Parameter " + parameter.name +
        " on object matches name with port parameter, but dimensionality does not match");
  else
    MatchItem(*item, std::move(parameter));
}

void CUnitInfoPort::MatchUncounted(InformationSlot& item, ICapeCollection& collection) {
  auto parameter = FindConnectedParameter(collection, item.description->ComponentName());
  if (parameter && com::EqualNoCase(parameter->name, item.description->ComponentName()) &&
      MatchesDimensionality(parameter->dimensionality, item.description->Dimensions()))
    MatchItem(item, std::move(*parameter));
}

void CUnitInfoPort::MatchItem(InformationSlot& item, ConnectedParameter parameter) {
  Log("info: port " + ComponentName() + " matches connection parameter \"" + parameter.name +
      "\" to information item \"" + item.description->ComponentName() + "\"");
  item.id = std::move(parameter.id);
}

void CUnitInfoPort::JudgeUnmatched(const InformationSlot& item) {
  const std::string text = "nformation item \"" + item.description->ComponentName() + "\" of port \"" +
                           ComponentName() +
                           "\" could not be matched to any parameter available on the object to connect to";
  if (!item.description->IsOptional()) throw ConnectFailure("I" + text);
  Log("Warning: Optional i" + text);
}

void CUnitInfoPort::Log(const std::string& line) { Unit().LogToHost(line); }

bool CUnitInfoPort::IsMatched(std::size_t item) const {
  return item < items.size() && items[item].IsMatched();
}

com::Ref<ICapeParameter> CUnitInfoPort::MatchedParameter(std::size_t item) {
  if (item >= items.size()) throw Failure("internal error, information item is not exported by port");
  const com::Ref<IDispatch> object = ConnectedObject();
  if (!object) throw Failure("port is not connected");
  const com::Variant id = com::Copy(items[item].id.Get());
  if (id.Get().vt == VT_EMPTY) throw Failure("information was not mapped to parameter on connected object");
  HRESULT failure = S_OK;
  const auto collection = object.As<ICapeCollection>(&failure);
  if (!collection)
    throw Failure("failed to get ICapeCollection from object connected to port, " +
                  ErrorText(object.Get(), failure));
  com::Ref<IDispatch> found;
  CheckHost(collection->Item(id.Get(), found.Put()), collection.Get(), [&](const std::string& why) {
    const std::string shown =
        id.Get().vt == VT_BSTR ? com::ToUtf8(id.Get().bstrVal) : std::to_string(com::ReadInteger(id.Get()));
    return Failure("Failed to obtain specified item " + shown +
                   " from connected object's parameter collection: " + why);
  });
  auto parameter = found.As<ICapeParameter>(&failure);
  if (!parameter)
    throw Failure("Failed to get ICapeParameter from parameter: " + ErrorText(found.Get(), failure));
  return parameter;
}

com::Variant CUnitInfoPort::ReadInformation(std::size_t item) {
  return Recorded("ReadInformation", "UnitPort", [&] {
    const auto parameter = MatchedParameter(item);
    com::Variant value;
    CheckHost(parameter->get_value(value.Put()), parameter.Get(),
              [](const std::string& why) { return Failure("Failed to get value from parameter: " + why); });
    return value;
  });
}

void CUnitInfoPort::WriteInformation(std::size_t item, double value) {
  if (!IsConnected()) return;
  Recorded("WriteInformation", "UnitPort", [&] {
    const auto parameter = MatchedParameter(item);
    CheckHost(parameter->put_value(com::MakeDouble(value).Get()), parameter.Get(),
              [&](const std::string& why) {
                return Failure("Unable to set " + items[item].description->ComponentName() + " to port \"" +
                               ComponentName() + "\": Failed to set value from parameter: " + why);
              });
  });
}

}  // namespace morvelan
