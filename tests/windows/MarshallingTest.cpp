// A unit that lives in one apartment and is called from another: by the standard's interfaces where the
// system knows how to marshal them, and by name always.

#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <thread>

#include "morvelan.h"
#include "tests/support/Door.h"
#include "tests/windows/LateBound.h"
#include "tests/windows/LoadedLibrary.h"

namespace morvelan::test::marshalling {

using com::Ref;

/// The interfaces in the system's registry, as the standard's own type library puts them there: to be
/// marshalled by what the type library says of them.
class RegisteredInterfaces {
 public:
  RegisteredInterfaces() {
    const com::Bstr file = com::ToBstr(MORVELAN_LIBRARY);
    TLIBATTR* attributes = nullptr;
    EXPECT_EQ(LoadTypeLibEx(file.Get(), REGKIND_NONE, types.Put()), S_OK);
    EXPECT_EQ(RegisterTypeLib(types.Get(), file.Get(), nullptr), S_OK);
    EXPECT_EQ(types->GetLibAttr(&attributes), S_OK);
    identity = *attributes;
    types->ReleaseTLibAttr(attributes);
  }
  RegisteredInterfaces(const RegisteredInterfaces&) = delete;
  RegisteredInterfaces& operator=(const RegisteredInterfaces&) = delete;
  ~RegisteredInterfaces() {
    EXPECT_EQ(
        UnRegisterTypeLib(identity.guid, identity.wMajorVerNum, identity.wMinorVerNum, identity.lcid, identity.syskind),
        S_OK);
    // With it went what the library had registered.
    EXPECT_EQ(LoadedLibrary(MORVELAN_LIBRARY).Call("DllRegisterServer"), S_OK);
  }

 private:
  Ref<ITypeLib> types;
  TLIBATTR identity{};
};

/// An interface on its way to another apartment.
struct Parcel {
  Parcel(const Ref<IUnknown>& object, REFIID iid)
      : code(CoMarshalInterThreadInterfaceInStream(iid, object.Get(), stream.Put())) {}

  template <class Interface>
  Ref<Interface> Unpack() {
    Ref<Interface> interfacePointer;
    if (stream)
      CoGetInterfaceAndReleaseStream(stream.Detach(), __uuidof(Interface),
                                     reinterpret_cast<void**>(interfacePointer.Put()));
    return interfacePointer;
  }

  Ref<IStream> stream;
  HRESULT code;
};

/// Runs `visit` in a thread with an apartment of its own, while this apartment answers its calls.
void InAnotherApartment(const std::function<void()>& visit) {
  const HANDLE done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  std::string failure;
  std::thread visitor([&] {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    try {
      visit();
    } catch (const std::exception& error) {
      failure = error.what();
    }
    CoUninitialize();
    SetEvent(done);
  });
  while (MsgWaitForMultipleObjects(1, &done, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  }
  visitor.join();
  CloseHandle(done);
  EXPECT_EQ(failure, "");
}

/// What the standard's interfaces of a unit answer.
std::string CallThroughInterfaces(const Ref<ICapeUnit>& unit) {
  std::ostringstream log;
  const UnitDoor door(unit.As<IUnknown>());
  std::string message;
  log << door.Status();
  const bool isValid = door.IsValid(message);
  log << ' ' << isValid << " \"" << message << "\" " << door.Status();
  const auto version = door.Parameter("Thermo Version");
  if (!version) return log.str() + " no parameter";
  log << ' ' << door.ParameterText("Thermo Version") << std::hex;
  log << ' ' << version->put_value(com::MakeString("1.1").Get()) << ' ' << door.ParameterText("Thermo Version");
  log << ' ' << version->put_value(com::MakeString("2.0").Get()) << ' ' << ErrorOf(version.Get()).description;
  return log.str();
}

/// What a unit answers when it is called by name.
std::string CallByNames(const Ref<IDispatch>& unit) {
  std::ostringstream log;
  const Outcome valid = CallByName(unit.Get(), "Validate");
  log << std::hex << valid.code << ' ' << com::ReadBoolean(valid.result.Get());
  const Outcome refused =
      CallByName(unit.Get(), "selectedReport", DISPATCH_PROPERTYPUT, {com::MakeString("none").Get()});
  log << ' ' << refused.code << ' ' << refused.description;
  return log.str();
}

void VisitUnit(bool interfacesAreKnown) {
  const LoadedLibrary library(MORVELAN_LIBRARY);
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_OK) << "before";
  {
    Ref<IUnknown> unit;
    ASSERT_EQ(CoCreateInstance(__uuidof(NoOperation), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUnknown),
                               reinterpret_cast<void**>(unit.Put())),
              S_OK);
    EXPECT_EQ(unit.As<ICapeUtilities>()->Initialize(), S_OK);
    Parcel byInterfaces(unit, __uuidof(ICapeUnit));
    Parcel byName(unit, __uuidof(IDispatch));
    EXPECT_EQ(byName.code, S_OK);
    std::string interfaceAnswers, nameAnswers;
    bool isItself = false;
    InAnotherApartment([&] {
      const Ref<ICapeUnit> visited = byInterfaces.Unpack<ICapeUnit>();
      isItself = visited && visited.Get() == unit.As<ICapeUnit>().Get();
      if (visited) interfaceAnswers = CallThroughInterfaces(visited);
      if (const Ref<IDispatch> named = byName.Unpack<IDispatch>()) nameAnswers = CallByNames(named);
    });
    EXPECT_FALSE(isItself) << "called without its apartment";
    EXPECT_EQ(nameAnswers, "0 0 80020009 unknown report name in put_selectedReport");
    if (interfacesAreKnown) {
      EXPECT_EQ(byInterfaces.code, S_OK);
      EXPECT_EQ(interfaceAnswers, "0 0 \"not all material ports are connected\" 1 1.0 0 1.1 80040501 invalid choice");
    } else {
      EXPECT_TRUE(byInterfaces.code == E_NOINTERFACE || byInterfaces.code == REGDB_E_IIDNOTREG)
          << std::hex << byInterfaces.code;
      EXPECT_EQ(interfaceAnswers, "");
    }
  }
  EXPECT_EQ(library.Call("DllCanUnloadNow"), S_OK) << "after";
}

TEST(Marshalling, ReachesAUnitByNameAlways) { VisitUnit(false); }

TEST(Marshalling, ReachesAUnitByTheStandardsInterfacesWhereTheyAreRegistered) {
  {
    const RegisteredInterfaces registered;
    VisitUnit(true);
  }
  VisitUnit(false);
}

}  // namespace morvelan::test::marshalling
