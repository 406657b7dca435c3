#include "server/ClassTable.h"

#include "morvelan.h"
#include "units/heat/CHeaterCooler.h"
#include "units/information/CInformationCalculator.h"
#include "units/pressure/CValve.h"
#include "units/reactors/CCSTR.h"
#include "units/reactors/CEquilibriumReactor.h"
#include "units/reactors/CFixedConversionReactor.h"
#include "units/streams/CMixer.h"
#include "units/streams/CNoOperation.h"
#include "units/streams/CSplitter.h"

namespace morvelan::server {
namespace {

template <class Unit>
com::Ref<BaseUnit> Create() {
  return com::Make<Unit>();
}

const UnitClass kUnitClasses[] = {
    {.clsid = __uuidof(::NoOperation),
     .progId = "VELT_MORV.NoOperation",
     .displayName = "NoOperation Class",
     .name = "NoOperation",
     .description = "NoOperation - Debug unit operation, copies inlet to outlet",
     .consumesThermodynamics = true,
     .create = Create<CNoOperation>},
    {.clsid = __uuidof(::CSTR),
     .progId = "VELT_MORV.CSTR",
     .displayName = "CSTR Class",
     .name = "CSTR",
     .description = "Continuously stirred tank reactor for equilibrium and kinetic reactions",
     .consumesThermodynamics = true,
     .create = Create<CCSTR>},
    {.clsid = __uuidof(::EquilibriumReactor),
     .progId = "VELT_MORV.EquilibriumReactor",
     .displayName = "EquilibriumReactor Class",
     .name = "EquilibriumReactor",
     .description = "Reactor to perform one or more equilibrium reactions",
     .consumesThermodynamics = true,
     .create = Create<CEquilibriumReactor>},
    {.clsid = __uuidof(::FixedConversionReactor),
     .progId = "VELT_MORV.FixedConversionReactor",
     .displayName = "FixedConversionReactor Class",
     .name = "FixedConversionReactor",
     .description = "Reactor for reactions with specified conversions",
     .consumesThermodynamics = true,
     .create = Create<CFixedConversionReactor>},
    {.clsid = __uuidof(::HeaterCooler),
     .progId = "VELT_MORV.HeaterCooler",
     .displayName = "HeaterCooler Class",
     .name = "HeaterCooler",
     .description = "Heater or cooler using heat duty or outlet temperature",
     .consumesThermodynamics = true,
     .create = Create<CHeaterCooler>},
    {.clsid = __uuidof(::InformationCalculator),
     .progId = "VELT_MORV.InformationCalculator",
     .displayName = "InformationCalculator Class",
     .name = "InformationCalculator",
     .description = "Unit operation for calculating information from other information",
     .consumesThermodynamics = false,
     .create = Create<CInformationCalculator>},
    {.clsid = __uuidof(::Mixer),
     .progId = "VELT_MORV.Mixer",
     .displayName = "Mixer Class",
     .name = "Mixer",
     .description = "Mixer - unit operation to adiabatically mix 2 or more inlet streams into a single outlet",
     .consumesThermodynamics = true,
     .create = Create<CMixer>},
    {.clsid = __uuidof(::Splitter),
     .progId = "VELT_MORV.Splitter",
     .displayName = "Splitter Class",
     .name = "Splitter",
     .description = "Splitter - unit operation to split input stream into 2 or more output streams using "
                    "split fractions",
     .consumesThermodynamics = true,
     .create = Create<CSplitter>},
    {.clsid = __uuidof(::Valve),
     .progId = "VELT_MORV.Valve",
     .displayName = "Valve Class",
     .name = "Valve",
     .description = "Valve. Model using pressure difference and pH flash.",
     .consumesThermodynamics = true,
     .create = Create<CValve>},
};

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
