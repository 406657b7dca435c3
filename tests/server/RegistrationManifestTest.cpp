// Registration where there is no registry: what it writes, what it leaves, and what it says when it can't.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "com/Classes.h"
#include "server/ClassTable.h"
#include "server/Registration.h"

namespace morvelan::test::registration_manifest {

namespace fs = std::filesystem;

/// A data folder of its own for one test.
class RegistrationManifest : public testing::Test {
 protected:
  void SetUp() override {
    folder = fs::temp_directory_path() / ("morvelan-" + std::to_string(std::random_device()()));
    fs::create_directories(folder);
    setenv("XDG_DATA_HOME", folder.c_str(), 1);
  }
  void TearDown() override {
    fs::remove_all(folder);
    if (previous.empty())
      unsetenv("XDG_DATA_HOME");
    else
      setenv("XDG_DATA_HOME", previous.c_str(), 1);
  }

  fs::path folder;
  const std::string previous = std::getenv("XDG_DATA_HOME") ? std::getenv("XDG_DATA_HOME") : "";
};

TEST_F(RegistrationManifest, LeavesNothingOfItsOwnBehind) {
  std::ofstream(folder / "somebody-else") << "text";
  server::RegisterClasses();
  server::RegisterClasses();
  EXPECT_EQ(com::PublishedClasses().size(), server::UnitClasses().size());
  server::UnregisterClasses();
  server::UnregisterClasses();
  EXPECT_FALSE(fs::exists(folder / "morvelan"));
  EXPECT_TRUE(fs::exists(folder / "somebody-else"));
}

TEST_F(RegistrationManifest, FailsWholeWhereItMayNotWrite) {
  std::ofstream(folder / "morvelan") << "a file where the folder should be";
  EXPECT_THROW(server::RegisterClasses(), std::exception);
  EXPECT_TRUE(fs::is_regular_file(folder / "morvelan"));
}

TEST_F(RegistrationManifest, NamesAManifestThatCannotBeRead) {
  fs::create_directories(folder / "morvelan");
  std::ofstream(folder / "morvelan/classes.json") << "{\"classes\": [{]}";
  try {
    (void)com::PublishedClasses();
    ADD_FAILURE() << "was read";
  } catch (const std::runtime_error& error) {
    EXPECT_NE(std::string(error.what()).find((folder / "morvelan/classes.json").string()), std::string::npos)
        << error.what();
  }
}

}  // namespace morvelan::test::registration_manifest
