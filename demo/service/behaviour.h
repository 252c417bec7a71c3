#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

// What the stand-in service was told to do instead of behaving well: a text of one rule a line,
// "SUBJECT ACTION [ARGUMENT]". Texts may hold %XX for any byte. The subject is "launch" or a
// request's command; several rules of one subject are used one after the other, the last one stays.
//
//   launch refuse 2      ends with status 2; nothing runs afterwards
//   launch status 1      hands its work on, then ends with status 1
//   launch kill 9        is ended by signal 9
//   launch ignore-input  ends without having read its input
//   own:INFO ...         only for requests that the plug-in makes on a socket of its own
//   INFO say TEXT        answers TEXT
//   INFO fill N          answers N bytes of repeated digits
//   INFO raw BYTES       sends BYTES, then closes
//   INFO status 500      answers with that HTTP status
//   INFO cut N           announces 100000 bytes, sends N, closes
//   INFO stall N         announces 100000 bytes, sends N and no more
//   INFO delay MS        answers as usual, later
//   INFO hold            never answers
//   INFO hang-up         closes without an answer
//   INFO die             the service ends without an answer
//   INFO last-words TEXT answers TEXT, then the service ends
//   INFO usual           answers as usual

/// One rule; `action` is empty where no rule applies.
struct Rule {
    std::string subject;
    std::string action;
    std::string argument;

    int number() const;
};

/// All rules. Any thread may call it.
class Behaviour {
  public:
    /// The rules of the file beside the pid file; none when there is no such file.
    static const char* file();
    explicit Behaviour(const std::string& path);

    /// The next rule of the subject.
    Rule next(std::string_view subject);

  private:
    std::mutex mutex_;
    std::vector<Rule> rules_;
};
