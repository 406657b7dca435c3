#include "host/unit/HostedUnit.h"

#include <algorithm>
#include <functional>

#include "com/Text.h"
#include "host/file/Nearest.h"
#include "morvelan.h"

namespace morvelan::host {
namespace {

template <class Interface, class Source>
com::Ref<Interface> Require(const com::Ref<Source>& object, const char* name) {
  auto found = object.template As<Interface>();
  if (!found) throw std::runtime_error(std::string("the object does not offer ") + name);
  return found;
}

/// Name and description of an object.
struct Identification {
  std::string name;
  std::string description;
};

Identification Identify(const com::Ref<IDispatch>& object) {
  const auto identification = Require<ICapeIdentification>(object, "ICapeIdentification");
  com::Bstr name, description;
  Check(identification->get_ComponentName(name.Put()), identification.Get());
  Check(identification->get_ComponentDescription(description.Put()), identification.Get());
  return {com::ToUtf8(name.Get()), com::ToUtf8(description.Get())};
}

std::vector<com::Ref<IDispatch>> ItemsOf(const com::Ref<ICapeCollection>& collection) {
  LONG count = 0;
  Check(collection->Count(&count), collection.Get());
  std::vector<com::Ref<IDispatch>> items;
  for (LONG i = 1; i <= count; ++i) {
    com::Ref<IDispatch> item;
    Check(collection->Item(com::MakeInteger(i).Get(), item.Put()), collection.Get());
    items.push_back(std::move(item));
  }
  return items;
}

/// The items of a collection that an object hands out.
template <class Interface>
std::vector<com::Ref<IDispatch>> ItemsOf(const com::Ref<Interface>& owner,
                                         HRESULT (STDMETHODCALLTYPE Interface::*getter)(IDispatch**)) {
  com::Ref<IDispatch> collection;
  Check((owner.Get()->*getter)(collection.Put()), owner.Get());
  return ItemsOf(Require<ICapeCollection>(collection, "ICapeCollection"));
}

Exponents DimensionsOf(const com::Ref<ICapeParameterSpec>& specification) {
  com::Variant array;
  Check(specification->get_Dimensionality(array.Put()), specification.Get());
  const std::vector<double> given = com::ReadDoubles(array.Get());
  Exponents exponents{};
  std::copy_n(given.begin(), std::min(given.size(), exponents.size()), exponents.begin());
  return exponents;
}

UnitPort ReadPort(const com::Ref<IDispatch>& item) {
  Identification identity = Identify(item);
  UnitPort port{.name = std::move(identity.name),
                .description = std::move(identity.description),
                .object = Require<ICapeUnitPort>(item, "ICapeUnitPort")};
  Check(port.object->get_direction(&port.direction), port.object.Get());
  Check(port.object->get_portType(&port.type), port.object.Get());
  if (const auto collection = item.As<ICapeCollection>())
    for (const auto& description : ItemsOf(collection))
      port.items.push_back(
          {Identify(description).name, DimensionsOf(Require<ICapeParameterSpec>(description, "ICapeParameterSpec"))});
  return port;
}

UnitParameter ReadParameter(const com::Ref<IDispatch>& item) {
  Identification identity = Identify(item);
  UnitParameter parameter{.name = std::move(identity.name),
                          .description = std::move(identity.description),
                          .object = Require<ICapeParameter>(item, "ICapeParameter")};
  Check(parameter.object->get_Mode(&parameter.mode), parameter.object.Get());
  com::Ref<IDispatch> dispatch;
  Check(parameter.object->get_Specification(dispatch.Put()), parameter.object.Get());
  const auto specification = Require<ICapeParameterSpec>(dispatch, "ICapeParameterSpec");
  Check(specification->get_Type(&parameter.kind), specification.Get());
  parameter.dimensions = DimensionsOf(specification);
  return parameter;
}

}  // namespace

com::PublishedClass RequireUnitClass(const std::string& name, const std::vector<com::PublishedClass>& classes) {
  using com::PublishedClass;
  const std::function<bool(const PublishedClass&)> searches[] = {
      [&](const PublishedClass& candidate) {
        return com::EqualNoCase(candidate.progId, name) || com::EqualNoCase(com::ToText(candidate.clsid), name);
      },
      // Other libraries may publish units of the same name.
      [&](const PublishedClass& candidate) {
        return com::EqualNoCase(candidate.name, name) && candidate.progId.starts_with("VELT_MORV.");
      },
      [&](const PublishedClass& candidate) { return com::EqualNoCase(candidate.name, name); }};
  for (const auto& isWanted : searches)
    if (const auto found = std::ranges::find_if(classes, isWanted); found != classes.end()) return *found;
  const std::vector<std::string> names = NamesOf(classes);
  throw std::runtime_error(
      "class \"" + name + "\" is unknown" +
      (names.empty() ? "; no unit classes are registered" : Suggestion(name, names) + "; known are " + Listed(names)));
}

HostedUnit::HostedUnit(const com::PublishedClass& unitClass, Uninitialized)
    : object(com::CreateObject(unitClass.clsid)),
      unit(Require<ICapeUnit>(object, "ICapeUnit")),
      utilities(Require<ICapeUtilities>(object, "ICapeUtilities")) {}

HostedUnit::HostedUnit(const com::PublishedClass& unitClass) : HostedUnit(unitClass, Uninitialized()) {
  Check(utilities->Initialize(), utilities.Get());
}

HostedUnit::HostedUnit(const com::PublishedClass& unitClass, IStream& saved) : HostedUnit(unitClass, Uninitialized()) {
  const auto persistence = Require<IPersistStream>(object, "IPersistStream");
  Check(persistence->Load(&saved), persistence.Get());
  Check(utilities->Initialize(), utilities.Get());
}

HostedUnit::~HostedUnit() {
  if (utilities) utilities->Terminate();  // a failure has no consequence any more
}

void HostedUnit::SetName(const std::string& name) {
  const auto identification = Require<ICapeIdentification>(object, "ICapeIdentification");
  Check(identification->put_ComponentName(com::ToBstr(name).Get()), identification.Get());
}

void HostedUnit::Configure(const std::string& configuration) {
  const auto configurable = object.As<IUnitConfiguration>();
  if (!configurable) throw std::runtime_error("the unit takes no configuration");
  Check(configurable->SetConfiguration(com::ToBstr(configuration).Get()), configurable.Get());
}

com::Ref<IStream> HostedUnit::Save() const {
  const auto persistence = Require<IPersistStream>(object, "IPersistStream");
  com::Ref<IStream> stream;
  if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()))) throw std::bad_alloc();
  Check(persistence->Save(stream.Get(), TRUE), persistence.Get());
  stream->Seek({}, STREAM_SEEK_SET, nullptr);
  return stream;
}

void HostedUnit::SetContext(IDispatch* context) { Check(utilities->put_simulationContext(context), utilities.Get()); }

void HostedUnit::SetReactions(IDispatch* reactions) {
  const auto reactionContext = object.As<ICapeKineticReactionContext>();
  if (!reactionContext) return;
  // The unit may replace the object that it is given by another one.
  IDispatch* passed = com::Ref<IDispatch>::Share(reactions).Detach();
  const HRESULT outcome = reactionContext->SetReactionObject(&passed);
  const auto returned = com::Ref<IDispatch>::Attach(passed);
  Check(outcome, reactionContext.Get());
}

std::vector<UnitPort> HostedUnit::Ports() const {
  std::vector<UnitPort> ports;
  for (const auto& item : ItemsOf(unit, &ICapeUnit::get_ports)) ports.push_back(ReadPort(item));
  return ports;
}

std::vector<UnitParameter> HostedUnit::Parameters() const {
  std::vector<UnitParameter> parameters;
  for (const auto& item : ItemsOf(utilities, &ICapeUtilities::get_parameters))
    parameters.push_back(ReadParameter(item));
  return parameters;
}

std::optional<ReportedError> HostedUnit::Validate() {
  com::Bstr message;
  VARIANT_BOOL isValid = VARIANT_FALSE;
  const HRESULT outcome = unit->Validate(message.Put(), &isValid);
  if (FAILED(outcome)) return ReportedErrorOf(unit.Get(), outcome);
  if (isValid != VARIANT_FALSE) return std::nullopt;
  return ReportedError{"the unit is not valid", com::ToUtf8(message.Get()), "Validate", "ICapeUnit"};
}

void HostedUnit::Calculate() { Check(unit->Calculate(), unit.Get()); }

std::vector<UnitReport> HostedUnit::Reports() {
  const auto reporter = object.As<ICapeUnitReport>();
  std::vector<UnitReport> reports;
  if (!reporter) return reports;
  com::Variant names;
  Check(reporter->get_reports(names.Put()), reporter.Get());
  for (const std::string& name : com::ReadStrings(names.Get())) {
    com::Bstr text;
    Check(reporter->put_selectedReport(com::ToBstr(name).Get()), reporter.Get());
    Check(reporter->ProduceReport(text.Put()), reporter.Get());
    reports.push_back({name, com::ToUtf8(text.Get())});
  }
  return reports;
}

}  // namespace morvelan::host
