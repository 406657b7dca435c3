// The library as hosts load it: class factories, the module's life, registration.

#include <gtest/gtest.h>

#include <set>

#include "com/Classes.h"
#include "server/ClassFactory.h"
#include "server/ClassTable.h"
#include "tests/support/Door.h"
#include "tests/support/MessageBoxes.h"

namespace morvelan::test::class_server {

using server::UnitClass;

TEST(Server, ListsEveryClassOnce) {
  std::set<std::string> seen;
  for (const UnitClass& unitClass : server::UnitClasses()) {
    SCOPED_TRACE(unitClass.name);
    EXPECT_TRUE(seen.insert(com::ToText(unitClass.clsid)).second);
    EXPECT_TRUE(seen.insert(unitClass.progId).second);
    EXPECT_TRUE(std::string(unitClass.progId).starts_with("VELT_MORV."));
    EXPECT_EQ(unitClass.displayName, std::string(unitClass.name) + " Class");
    EXPECT_EQ(unitClass.consumesThermodynamics, std::string_view(unitClass.name) != "InformationCalculator");
    EXPECT_EQ(server::CategoriesOf(unitClass).size(), unitClass.consumesThermodynamics ? 5u : 2u);
    const auto unit = com::Query<IUnknown>(static_cast<ICapeUnit*>(unitClass.create().Get()));
    EXPECT_EQ(TextFrom(unit.Get(), &ICapeIdentification::get_ComponentName), unitClass.name);
    EXPECT_EQ(unit.As<ICapeUnitReport>().As<ECapeUser>().As<IDispatch>().As<IUnknown>().Get(), unit.Get())
        << "one object whatever interface it is asked for";
  }
}

TEST(Server, MakesObjectsAndCountsThem) {
  const long before = com::ModuleUses();
  const auto factory = com::Make<server::ClassFactory>(server::UnitClasses()[0]);
  com::Ref<ICapeUnit> unit;
  void** result = reinterpret_cast<void**>(unit.Put());
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(ICapeUnit), result), S_OK);
  EXPECT_TRUE(unit);
  EXPECT_GT(com::ModuleUses(), before + 1);
  void* none = &none;
  EXPECT_EQ(factory->CreateInstance(static_cast<IClassFactory*>(factory.Get()), __uuidof(IUnknown), &none),
            CLASS_E_NOAGGREGATION);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(ICapeThermoMaterial), &none), E_NOINTERFACE);
  EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(IUnknown), nullptr), E_POINTER);
  unit.Reset();
  EXPECT_EQ(com::ModuleUses(), before + 1) << "nothing but the factory is left";
  EXPECT_EQ(factory->LockServer(TRUE), S_OK);
  EXPECT_EQ(com::ModuleUses(), before + 2);
  EXPECT_EQ(factory->LockServer(FALSE), S_OK);
}

TEST(Server, SaysThatMemoryRanOutWhenAUnitCannotBeMade) {
  const UnitClass unmakeable = {{}, "", "", "", "", false, []() -> com::Ref<BaseUnit> { throw std::bad_alloc(); }};
  com::Ref<IUnknown> unit;
  const std::string shown = MessageBoxesOf([&] {
    EXPECT_EQ(com::Make<server::ClassFactory>(unmakeable)
                  ->CreateInstance(nullptr, __uuidof(IUnknown), reinterpret_cast<void**>(unit.Put())),
              E_OUTOFMEMORY);
  });
  EXPECT_EQ(shown, "MORVELAN critical: out of memory\n");
}

TEST(Server, PublishesItsClassesToHosts) {
  std::size_t found = 0;
  for (const com::PublishedClass& published : com::PublishedClasses())
    for (const UnitClass& unitClass : server::UnitClasses()) {
      if (!(published.clsid == unitClass.clsid)) continue;
      ++found;
      EXPECT_EQ(published.name, unitClass.name);
      EXPECT_EQ(published.progId, unitClass.progId);
      EXPECT_EQ(published.description, unitClass.description);
      EXPECT_TRUE(com::CreateObject(published.clsid).As<ICapeUnit>());
    }
  EXPECT_EQ(found, server::UnitClasses().size());
  EXPECT_THROW((void)com::CreateObject(__uuidof(ICapeUnit)), std::runtime_error);
}

}  // namespace morvelan::test::class_server
