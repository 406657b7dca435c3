#include "framework/CUnitInfoPort.h"

#include <algorithm>

#include "errors/HostCall.h"
#include "framework/CollectionItem.h"
#include "framework/ConnectFailure.h"
#include "framework/ConnectedCollection.h"
#include "framework/UnitOwner.h"

namespace morvelan {
namespace {

constexpr CollectionTexts kItemTexts = {
    {"invalid parameter specification specification",
     "expected a name or an integer for a parameter specification identifier"},
    {"index out of range for parameter specification specification",
     "index out of range for parameter specification specification"},
    {"empty string", "empty string"},
    {"invalid information descriptor name", "information descriptor name not found"},
    {"failed to obtain interface", "failed to obtain IDispatch interface from parameter description"},
};

constexpr const char* kNotExported = "internal error, information item is not exported by port";

bool IsMatch(const com::Variant& id) { return id.Get().vt != VT_EMPTY; }

}  // namespace

CUnitInfoPort::CUnitInfoPort(const PortDeclaration& declaration, UnitOwner& owner) : Implements(declaration, owner) {
  for (const InformationItem& item : declaration.items) items.push_back(com::Make<CInfoParamDesc>(item));
  matched.resize(items.size());
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
    const auto nameOf = [&](std::size_t i) { return items[i]->ComponentName(); };
    *item = HandOut(items[FindItem(id, items.size(), nameOf, kItemTexts)], kItemTexts);
  });
}

void CUnitInfoPort::ReleaseConnection() {
  for (com::Variant& id : matched) id = {};
  CUnitPort::ReleaseConnection();
}

void CUnitInfoPort::Rename(std::string portName, std::string itemName) noexcept {
  SetName(std::move(portName));
  if (!items.empty()) items.front()->Rename(std::move(itemName));
}

void CUnitInfoPort::Accept(IDispatch* object) {
  const std::string kind = Type() == CAPE_ENERGY ? "energy" : "information";
  HRESULT failure = S_OK;
  const auto dispatch = com::Query<IDispatch>(object, &failure);
  if (!dispatch)
    throw ConnectFailure("failed to obtain IDispatch interface to " + kind + " object: " + ErrorText(object, failure));
  const auto collection = dispatch.As<ICapeCollection>();
  if (!collection) throw ConnectFailure("The object that requested connection does not implement ICapeCollection");
  matched = Match(*collection);
  Keep(dispatch);
}

CUnitInfoPort::Matches CUnitInfoPort::Match(ICapeCollection& collection) {
  std::vector<ConnectedParameter> parameters = ReadConnectedParameters(collection);
  const bool onlyOne = items.size() == 1 && parameters.size() == 1;
  Matches matches(items.size());
  for (ConnectedParameter& parameter : parameters)
    onlyOne ? MatchOnly(matches, std::move(parameter)) : MatchByName(matches, std::move(parameter));
  for (std::size_t item = 0; item < items.size(); ++item)
    if (!IsMatch(matches[item])) MatchUncounted(matches, item, collection);
  for (std::size_t item = 0; item < items.size(); ++item)
    if (!IsMatch(matches[item])) JudgeUnmatched(item);
  return matches;
}

void CUnitInfoPort::MatchOnly(Matches& matches, ConnectedParameter parameter) {
  if (MatchesDimensionality(parameter.dimensionality, items.front()->Dimensions()))
    return MatchItem(matches, 0, std::move(parameter));
  Log("Warning: Parameter " + parameter.name + " on object matches does not match dimensionality with port parameter");
  Log("Port \"" + ComponentName() + "\" does not predict values for \"" + parameter.name +
      "\"; no suitable information item is present");
}

void CUnitInfoPort::MatchByName(Matches& matches, ConnectedParameter parameter) {
  std::size_t item = 0;
  while (item < items.size() &&
         (IsMatch(matches[item]) || !com::EqualNoCase(items[item]->ComponentName(), parameter.name)))
    ++item;
  if (item == items.size())
    Log("Warning: port \"" + ComponentName() + "\" does not have a matching data item for parameter \"" +
        parameter.name + "\"; the data will be ignored.");
  else if (!MatchesDimensionality(parameter.dimensionality, items[item]->Dimensions()))
    Log("Parameter " + parameter.name +
        " on object matches name with port parameter, but dimensionality does not match");
  else
    MatchItem(matches, item, std::move(parameter));
}

void CUnitInfoPort::MatchUncounted(Matches& matches, std::size_t item, ICapeCollection& collection) {
  auto parameter = FindConnectedParameter(collection, items[item]->ComponentName());
  if (parameter && MatchesDimensionality(parameter->dimensionality, items[item]->Dimensions()))
    MatchItem(matches, item, std::move(*parameter));
}

void CUnitInfoPort::MatchItem(Matches& matches, std::size_t item, ConnectedParameter parameter) {
  Log("info: port " + ComponentName() + " matches connection parameter \"" + parameter.name +
      "\" to information item \"" + items[item]->ComponentName() + "\"");
  matches[item] = std::move(parameter.id);
}

void CUnitInfoPort::JudgeUnmatched(std::size_t item) {
  const std::string text = "nformation item \"" + items[item]->ComponentName() + "\" of port \"" + ComponentName() +
                           "\" could not be matched to any parameter available on the object to connect to";
  if (!items[item]->IsOptional()) throw ConnectFailure("I" + text);
  Log("Warning: Optional i" + text);
}

void CUnitInfoPort::Log(const std::string& line) { Unit().LogToHost(line); }

bool CUnitInfoPort::IsMatched(std::size_t item) const { return item < matched.size() && IsMatch(matched[item]); }

com::Ref<ICapeParameter> CUnitInfoPort::MatchedParameter(std::size_t item) {
  if (item >= items.size()) throw Failure(kNotExported);
  const com::Ref<IDispatch> object = ConnectedObject();
  if (!object) throw Failure("port is not connected");
  const com::Variant id = com::Copy(matched[item].Get());
  if (!IsMatch(id)) throw Failure("information was not mapped to parameter on connected object");
  HRESULT failure = S_OK;
  const auto collection = object.As<ICapeCollection>(&failure);
  if (!collection)
    throw Failure("failed to get ICapeCollection from object connected to port, " + ErrorText(object.Get(), failure));
  com::Ref<IDispatch> found;
  CheckHost(collection->Item(id.Get(), found.Put()), collection.Get(), [&](const std::string& why) {
    const std::string shown =
        id.Get().vt == VT_BSTR ? com::ToUtf8(id.Get().bstrVal) : std::to_string(com::ReadInteger(id.Get()));
    return Failure("Failed to obtain specified item " + shown +
                   " from connected object's parameter collection: " + why);
  });
  auto parameter = found.As<ICapeParameter>(&failure);
  if (!parameter) throw Failure("Failed to get ICapeParameter from parameter: " + ErrorText(found.Get(), failure));
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
    if (item >= items.size()) throw Failure(kNotExported);
    try {
      const auto parameter = MatchedParameter(item);
      CheckHost(parameter->put_value(com::MakeDouble(value).Get()), parameter.Get(),
                [](const std::string& why) { return Failure("Failed to set value from parameter: " + why); });
    } catch (const Failure& failure) {
      throw Failure("Unable to set " + items[item]->ComponentName() + " to port \"" + ComponentName() +
                    "\": " + failure.error.description);
    }
  });
}

}  // namespace morvelan
