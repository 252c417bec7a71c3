#pragma once

#include <vector>

class Stage;

/// One story that the demo can play; it throws when the story takes another course.
struct Scenario {
    const char* name;
    const char* outcome;  ///< what has come true when it ends
    void (*play)(Stage& stage);
};

/// All of them, the default one first.
const std::vector<Scenario>& scenarios();
