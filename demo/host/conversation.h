#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "witness/witness.h"

// The conversation on a stage: every step that page, plug-in and service take, in the order of the
// causes. Scenarios expect its lines; a "*" in an expected line stands for any text.

/// Runs the event loop until `done`, at most `milliseconds`; tells whether it came to be.
bool waitUntil(const std::function<bool()>& done, int milliseconds = 10000);

class Conversation : public QObject {
    Q_OBJECT

  public:
    struct Totals {
        int messages = 0;            ///< answers and replies that the plug-in carried
        std::size_t bytes = 0;       ///< their characters
        double roundsPerSecond = 0;  ///< page to service and back
    };

    /// `live`: each step is printed as it happens.
    explicit Conversation(bool live);

    /// Adds a step that this process has seen.
    void add(const Step& step);

    /// The next steps are these, none between them. Throws std::runtime_error when one is another
    /// or does not come.
    void expect(std::initializer_list<std::string> lines);

    /// Passes over steps until one is this. Throws std::runtime_error when none is.
    void skipTo(const std::string& line);

    /// Passes over everything so far.
    void skipAll();

    /// Drops everything so far, for long runs that count memory.
    void forget();

    /// Tells whether this step has come, expected or not.
    bool has(const std::string& line);

    /// Throws std::runtime_error when a step has come that nobody expected.
    void expectNothingMore();

    Totals totals() const;

  private:
    struct Entry {
        double seconds;
        Step step;
    };

    void hearWitnesses();
    void append(const Step& step);
    std::string nextLine(const std::string& expected);

    bool live_;
    QElapsedTimer clock_;
    WitnessStand stand_;
    std::vector<Entry> entries_;
    std::size_t heardOf_ = 0;
};
