#include "linux/device/LinuxSystemControl.h"
#include "linux/device/RecordedMachine.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace halvane::linux {
namespace {

using test::RecordedMachine;
using Facts = std::vector<std::pair<const char*, std::optional<std::string>>>;

/// `count` processors of a kind, as /proc/cpuinfo repeats them.
std::string processors(int count, const std::string& lines) {
    std::string text;
    for (int i = 0; i < count; ++i) text += "processor\t: " + std::to_string(i) + "\n" + lines + "\n";
    return text;
}

void addMemoryBlocks(RecordedMachine::Files& files, int count, const std::string& state = "online") {
    files.emplace_back("sys/devices/system/memory/block_size_bytes", "8000000\n");
    for (int i = 0; i < count; ++i) files.emplace_back("sys/devices/system/memory/memory" + std::to_string(i) + "/state", state + "\n");
}

struct Machine {
    const char* name;
    RecordedMachine::Files files;
    Facts facts;
};

Machine laptop() {
    Machine machine{"laptop", {}, {}};
    machine.files = {
        {"sys/class/dmi/id/product_name", "20XW0055GE\n"},
        {"sys/class/dmi/id/product_version", "ThinkPad X1 Carbon Gen 9\n"},
        {"proc/meminfo", "MemTotal:       16113932 kB\n"},
        {"sys/devices/system/cpu/online", "0-7\n"},
        {"proc/cpuinfo", processors(8,
                                    "vendor_id\t: GenuineIntel\ncpu family\t: 6\nmodel\t\t: 140\nmodel name\t: 11th Gen Intel(R) "
                                    "Core(TM) i7-1165G7 @ 2.80GHz\nflags\t\t: fpu vme\n")},
        {"proc/sys/kernel/hostname", "chen-laptop\n"}};
    addMemoryBlocks(machine.files, 128);
    machine.facts = {{"hw.model", "20XW0055GE"},
                     {"hw.memsize", "17179869184"},
                     {"hw.ncpu", "8"},
                     {"machdep.cpu.brand_string", "11th Gen Intel(R) Core(TM) i7-1165G7 @ 2.80GHz"},
                     {"kern.hostname", "chen-laptop"}};
    return machine;
}

Machine server() {
    Machine machine{"server with 256 processors, some memory switched off", {}, {}};
    const std::string flags = "flags\t\t: " + std::string(1500, 'f') + "\n";
    machine.files = {
        {"sys/class/dmi/id/product_name", "To be filled by O.E.M.\n"},
        {"sys/class/dmi/id/product_version", "H12SSL-i\n"},
        {"proc/meminfo", "MemTotal:       6160384 kB\n"},
        {"sys/devices/system/cpu/online", "0-127,129-256\n"},
        {"proc/cpuinfo",
         processors(256, "vendor_id\t: AuthenticAMD\nmodel name\t: AMD EPYC 7763 64-Core Processor                \n" + flags)}};
    addMemoryBlocks(machine.files, 48);
    machine.files.emplace_back("sys/devices/system/memory/memory48/state", "offline\n");
    machine.facts = {{"hw.model", "H12SSL-i"},
                     {"hw.memsize", std::to_string(48ULL << 27)},
                     {"hw.ncpu", "256"},
                     {"machdep.cpu.brand_string", "AMD EPYC 7763 64-Core Processor"}};
    return machine;
}

Machine virtualMachine() {
    return {"virtual machine without memory blocks",
            {{"sys/class/dmi/id/product_name", "Standard PC (Q35 + ICH9, 2009)\n"},
             {"proc/meminfo", "MemTotal:        4017324 kB\n"},
             {"sys/devices/system/cpu/online", "0\n"}},
            {{"hw.model", "Standard PC (Q35 + ICH9, 2009)"},
             {"hw.memsize", "4113739776"},
             {"hw.ncpu", "1"},
             {"machdep.cpu.brand_string", std::nullopt}}};
}

Machine container() {
    Machine machine{"container with a quarter of the host's memory", {}, {}};
    machine.files = {{"proc/meminfo", "MemTotal:        4194304 kB\n"}, {"sys/devices/system/cpu/online", "garbage\n"}};
    addMemoryBlocks(machine.files, 128);
    machine.facts = {{"hw.model", std::nullopt}, {"hw.memsize", "4294967296"}, {"hw.ncpu", std::nullopt}};
    return machine;
}

Machine armBoard() {
    const std::string little = "BogoMIPS\t: 48.00\nCPU implementer\t: 0x41\nCPU architecture: 8\nCPU variant\t: 0x2\nCPU part\t: 0xd05\n";
    const std::string big = "CPU implementer\t: 0x41\nCPU architecture: 8\nCPU variant\t: 0x4\nCPU part\t: 0xd0b\n";
    return {"ARM board with two kinds of core",
            {{"proc/device-tree/model", std::string("Radxa ROCK 5B\0", 14)},
             {"proc/cpuinfo", processors(4, little) + processors(4, big) + "Serial\t\t: 10000000abcdef\n"}},
            {{"hw.model", "Radxa ROCK 5B"}, {"machdep.cpu.brand_string", "ARM Cortex-A55 + ARM Cortex-A76"}, {"hw.memsize", std::nullopt}}};
}

TEST(SystemControl, each_kind_of_machine_tells_what_it_is) {
    for (const auto& machine : {laptop(), server(), virtualMachine(), container(), armBoard()}) {
        const RecordedMachine recorded(machine.files);
        const LinuxSystemControl control(recorded.files());
        for (const auto& [name, value] : machine.facts) EXPECT_EQ(control.valueByName(name), value) << machine.name << ", " << name;
    }
}

TEST(SystemControl, processors_without_a_model_name_are_named_by_what_there_is) {
    const std::tuple<const char*, const char*, std::optional<std::string>> rows[] = {
        {"ARM design that is not known", "CPU implementer\t: 0x41\nCPU part\t: 0xfff\n", "ARM 0x41/0xfff"},
        {"maker that is not known", "CPU implementer\t: 0x51\nCPU part\t: 0xd0b\n", "ARM 0x51/0xd0b"},
        {"ARM numbers that are none", "CPU implementer\t: ARM\nCPU part\t: big\n", "ARM ARM/big"},
        {"old ARM kernel with a model name", "model name\t: ARMv7 Processor rev 4 (v7l)\nCPU implementer\t: 0x41\nCPU part\t: 0xd03\n",
         "ARMv7 Processor rev 4 (v7l)"},
        {"POWER", "processor\t: 0\ncpu\t\t: POWER9, altivec supported\n", "POWER9, altivec supported"},
        {"RISC-V", "processor\t: 0\nhart\t\t: 1\nisa\t\t: rv64imafdc\nuarch\t\t: sifive,u74-mc\n", "sifive,u74-mc"},
        {"S/390", "vendor_id       : IBM/S390\n# processors    : 4\n", "IBM/S390"},
        {"an empty name is none", "model name\t: \nvendor_id\t: Other\n", "Other"},
        {"nothing", "", std::nullopt},
        {"not UTF-8", "model name\t: \xff\xff\n", std::nullopt},
    };
    for (const auto& [name, text, brand] : rows) {
        const RecordedMachine machine{{"proc/cpuinfo", text}};
        EXPECT_EQ(LinuxSystemControl(machine.files()).valueByName("machdep.cpu.brand_string"), brand) << name;
    }
}

TEST(SystemControl, this_machine_answers_every_name_it_offers) {
    const LinuxSystemControl control{SystemFiles()};
    for (const auto& name : LinuxSystemControl::names()) {
        if (name == "hw.model") continue;  // containers and small virtual machines have none
        EXPECT_TRUE(control.valueByName(name)) << name;
    }
    EXPECT_EQ(control.valueByName("hw.ncpu"), std::to_string(::sysconf(_SC_NPROCESSORS_ONLN)));
    EXPECT_EQ(control.valueByName("hw.nothing"), std::nullopt);
    EXPECT_EQ(control.valueByName("../hostname"), std::nullopt);
}

}  // namespace
}  // namespace halvane::linux
