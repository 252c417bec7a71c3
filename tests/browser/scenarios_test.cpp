#include "host/scenarios.h"

#include <algorithm>
#include <ostream>

#include "browser_test.h"

void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }

class DemoScenario : public BrowserTest, public testing::WithParamInterface<Scenario> {};

TEST_P(DemoScenario, EndsInItsOutcome) { GetParam().play(stage); }

INSTANTIATE_TEST_SUITE_P(Named, DemoScenario, testing::ValuesIn(scenarios()), [](const auto& test) {
    std::string name = test.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});
