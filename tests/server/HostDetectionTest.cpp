// The host that a command line tells.

#include "server/HostDetection.h"

#include <gtest/gtest.h>

namespace morvelan::test::host_detection {

struct HostCase {
  const char* commandLine;
  int code;
};

constexpr HostCase kHostCases[] = {
    // every host
    {R"("C:\Program Files\apwin.exe")", 1},
    {R"("C:\Program Files\apmain.exe")", 1},
    {R"("C:\Program Files\hysys.exe")", 2},
    {R"("C:\Program Files\proii.exe")", 3},
    {R"("C:\Program Files\unisimdesign.exe")", 4},
    {R"("C:\Program Files\quarn.exe")", 5},
    {R"("C:\Program Files\quarn64.exe")", 5},
    {R"("C:\Program Files\simulator.exe")", 0},
    // quotes and blanks
    {R"("C:\Program Files (x86)\My Host\HYSYS.EXE" "C:\my cases\case 1.sim" /s)", 2},
    {R"(C:\Hosts\HySys.exe case.sim)", 2},
    {R"(C:\Program Files\hysys.exe)", 0},
    {R"(C:\hysys.exe files\other.exe)", 2},
    {R"("C:\hysys.exe files\other.exe")", 0},
    {R"("hysys.exe"case.sim)", 2},
    {R"("C:\Hosts\hysys.exe)", 2},
    {" hysys.exe", 0},
    {R"(" hysys.exe")", 0},
    // paths
    {"hysys.exe", 2},
    {"D:hysys.exe", 2},
    {"C:/Hosts/hysys.exe case.sim", 2},
    {R"(C:\Hosts/hysys.exe)", 2},
    {R"(\\server\share\hysys.exe)", 2},
    {R"(C:\hysys.exe\other.exe)", 0},
    {"/usr/bin/hysys.exe -x", 2},
    // names that are not quite right
    {R"(C:\Hosts\myhysys.exe)", 0},
    {"hysys.exe.exe", 0},
    {"hysys.ex", 0},
    {"hysys", 0},
    {"quarn32.exe", 0},
    {R"(C:\Hosts\other.exe hysys.exe)", 0},
    {R"("C:\Hosts\other.exe" "C:\Hosts\hysys.exe")", 0},
    // hardly a name
    {"", 0},
    {"\"", 0},
    {"\"\"", 0},
    {" ", 0},
    {"\\", 0},
    {".exe", 0},
};

TEST(HostDetection, KnowsHostsByTheNameOfTheirExecutable) {
  for (const HostCase& c : kHostCases) EXPECT_EQ(server::HostCodeOf(c.commandLine), c.code) << c.commandLine;
}

}  // namespace morvelan::test::host_detection
