#include "service/behaviour.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

std::string decoded(const std::string& text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '%' && at + 2 < text.size()) {
            result += static_cast<char>(std::stoi(text.substr(at + 1, 2), nullptr, 16));
            at += 2;
        } else {
            result += text[at];
        }
    }
    return result;
}

}  // namespace

int Rule::number() const { return std::atoi(argument.c_str()); }

const char* Behaviour::file() {
    return "/Library/Application Support/Zerva/nevo/etc/stand-in.rules";
}

Behaviour::Behaviour(const std::string& path) {
    std::ifstream input(path);
    for (std::string line; std::getline(input, line);) {
        Rule rule;
        std::istringstream words(line);
        words >> rule.subject >> rule.action >> std::ws;
        std::getline(words, rule.argument);
        rule.argument = decoded(rule.argument);
        rules_.push_back(std::move(rule));
    }
}

Rule Behaviour::next(std::string_view subject) {
    const std::lock_guard lock(mutex_);
    const auto isMine = [subject](const Rule& rule) { return rule.subject == subject; };
    const auto found = std::find_if(rules_.begin(), rules_.end(), isMine);
    if (found == rules_.end()) {
        return {};
    }
    Rule rule = *found;
    if (std::any_of(found + 1, rules_.end(), isMine)) {
        rules_.erase(found);
    }
    return rule;
}
