// A settings file of any bytes: the levels and the rotation size are those of a plain model of the
// file's lines, reading changes nothing, and setting a level changes it as the model says, once.

#include <gtest/gtest.h>
#include <unistd.h>

#include "ULogSettings.h"
#include "fuzz_home.h"
#include "fuzz_input.h"
#include "log_settings_model.h"

// Root has no settings of its own, so that the target is an ordinary user whoever runs it.
extern "C" uid_t __wrap_geteuid() { return 1000; }

namespace {

void expectReadAs(const SettingsModel& model, const std::string& module) {
    EXPECT_EQ(ULogSettings::getLogLevel(), model.level());
    EXPECT_EQ(ULogSettings::getModuleLogLevel(module.c_str()), model.moduleLevel(module));
    EXPECT_EQ(ULogSettings::getFileRotationSize(), model.rotationSize());
}

}  // namespace

void fuzzOne(FuzzInput& input) {
    const std::string path = fuzzHome() + "/Library/Zerva/zerva.conf";
    // The smallest level stands for none.
    const int level = static_cast<int>(input.number());
    const std::string module = "m" + input.line();
    SettingsModel model{input.rest()};
    writeFile(path, model.bytes);

    expectReadAs(model, module);
    ASSERT_EQ(readFile(path), model.bytes);

    ULogSettings::setLogLevel(static_cast<unsigned int>(level), 0);
    model.setLevel(level);
    ASSERT_EQ(readFile(path), model.bytes);
    expectReadAs(model, module);

    ULogSettings::setModuleLogLevel(module.c_str(), static_cast<unsigned int>(level));
    EXPECT_EQ(readFile(path), model.bytes);
}
