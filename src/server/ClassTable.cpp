#include "server/ClassTable.h"

#include "UnitHeaders.inc"
#include "morvelan.h"

namespace morvelan::server {
namespace {

template <class Unit>
com::Ref<BaseUnit> Create() {
  return com::Make<Unit>();
}

#define MORVELAN_UNIT(unit, thermodynamics, text) \
  {.clsid = __uuidof(::unit),                     \
   .progId = "VELT_MORV." #unit,                  \
   .displayName = #unit " Class",                 \
   .name = #unit,                                 \
   .description = text,                           \
   .consumesThermodynamics = thermodynamics,      \
   .create = Create<C##unit>},
const UnitClass kUnitClasses[] = {
#include "UnitRows.inc"
};
#undef MORVELAN_UNIT

constexpr const char* kVendorUrl = "https://morvelan.example";

constexpr GUID kCategories[] = {
    {0x678c09a5, 0x7d66, 0x11d2, {0xa6, 0x7d, 0x00, 0x10, 0x5a, 0x42, 0x88, 0x7f}},  // unit operation
    {0x678c09a1, 0x7d66, 0x11d2, {0xa6, 0x7d, 0x00, 0x10, 0x5a, 0x42, 0x88, 0x7f}},  // CAPE-OPEN component
    {0x4150c28a, 0xee06, 0x403f, {0xa8, 0x71, 0x87, 0xaf, 0xec, 0x38, 0xa2, 0x49}},  // consumes thermodynamics
    {0x0d562dc8, 0xea8e, 0x4210, {0xab, 0x39, 0xb6, 0x65, 0x13, 0xc0, 0xcd, 0x09}},  // supports thermodynamics 1.0
    {0x4667023a, 0x5a8e, 0x4cca, {0xab, 0x6d, 0x9d, 0x78, 0xc5, 0x11, 0x2f, 0xed}},  // supports thermodynamics 1.1
};
constexpr std::size_t kCategoriesWithoutThermodynamics = 2;

/// The identifier without its vendor: unlike names it has no blanks.
std::string HelpPage(const UnitClass& unitClass) {
  const std::string progId = unitClass.progId;
  return progId.substr(progId.find('.') + 1);
}

}  // namespace

std::span<const UnitClass> UnitClasses() { return kUnitClasses; }

std::vector<DescriptionValue> DescriptionOf(const UnitClass& unitClass) {
  return {{"Name", unitClass.name},
          {"Description", unitClass.description},
          {"CapeVersion", "1.0"},
          {"ComponentVersion", MORVELAN_VERSION},
          {"VendorURL", kVendorUrl},
          {"HelpURL", std::string(kVendorUrl) + "/units/" + HelpPage(unitClass)},
          {"About", "MORVELAN, an open library of unit operations for process simulators"}};
}

std::string VersionedProgId(const UnitClass& unitClass) { return std::string(unitClass.progId) + ".1"; }

std::span<const GUID> CategoriesOf(const UnitClass& unitClass) {
  const std::span<const GUID> all = kCategories;
  return unitClass.consumesThermodynamics ? all : all.first(kCategoriesWithoutThermodynamics);
}

}  // namespace morvelan::server
