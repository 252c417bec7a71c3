#pragma once

#include <gtest/gtest.h>

#include <string>

#include "host/stage.h"

// A test of the built plug-in in a real browser engine. ctest runs each test in a process of its
// own: the counter of requests starts at 0 and the service's port is free.

class BrowserTest : public testing::Test {
  protected:
    BrowserTest();

    Stage stage;
    Conversation& talk;
};

/// Names a test after the `name` of its row.
template <typename Row>
std::string rowName(const testing::TestParamInfo<Row>& test) {
    return test.param.name;
}

/// A page with one plug-in element of these attributes, whose `c_addcomm` runs `reply`: a function
/// body that knows `text` and `round` (0 for the first call).
std::string casePage(const std::string& reply, const std::string& attributes = "last_param=1");

/// What the stand-in service sends for "fill N".
std::string digits(std::size_t length);

/// The conversation's line for the plug-in's call of `c_addcomm`.
std::string pageHears(const std::string& text);

/// The lines up to the CONNECT request that a page of `casePage` brings about.
void expectLaunch(Conversation& talk);
