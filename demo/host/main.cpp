// Plays one scenario in a real browser engine and tells what happens. scripts/demo sets its stage.

#include <QApplication>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <string_view>

#include "host/scenarios.h"
#include "host/stage.h"

namespace {

void list() {
    for (const Scenario& scenario : scenarios()) {
        std::printf("%-16s %s\n", scenario.name, scenario.outcome);
    }
}

int play(const Scenario& scenario, Stage::Options options) {
    Stage stage(options);
    std::printf("scenario %s\n\n", scenario.name);
    try {
        scenario.play(stage);
    } catch (const std::exception& error) {
        std::printf("\nThe scenario took another course: %s\n", error.what());
        return 1;
    }
    const Conversation::Totals totals = stage.conversation().totals();
    std::printf("\n%d messages relayed, %zu bytes", totals.messages, totals.bytes);
    if (totals.roundsPerSecond > 0) {
        std::printf(", %.0f round trips per second", totals.roundsPerSecond);
    }
    std::printf("\noutcome: %s\n", scenario.outcome);
    return 0;
}

}  // namespace

int main(int argc, char* argv[]) {
    Stage::Options options{.live = true, .window = false, .picture = {}};
    std::string name = scenarios().front().name;
    for (int at = 1; at < argc; ++at) {
        const std::string_view argument = argv[at];
        if (argument == "--list") {
            list();
            return 0;
        }
        if (argument == "--window") {
            options.window = true;
        } else if (argument == "--picture" && at + 1 < argc) {
            options.picture = argv[++at];
        } else {
            name = argument;
        }
    }
    const auto& all = scenarios();
    const auto found = std::find_if(all.begin(), all.end(),
                                    [&name](const Scenario& each) { return each.name == name; });
    if (found == all.end()) {
        std::fprintf(stderr, "there is no scenario \"%s\"; these there are:\n", name.c_str());
        list();
        return 2;
    }
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return play(*found, options);
}
