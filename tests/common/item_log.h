#pragma once

#include <string>
#include <vector>

#include "bare_log.h"

/// Keeps the finished items in order, so that tests see what the interface itself makes of every
/// call. For one thread.
class ItemLog : public BareLog {
  public:
    int WriteLogItem(const char* text) override {
        m_items.emplace_back(text);
        return itemResult;
    }

    const std::vector<std::string>& items() const { return m_items; }
    void clear() { m_items.clear(); }

    /// What writing an item returns.
    int itemResult = 1234;

  private:
    std::vector<std::string> m_items;
};
