#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

/// A home folder of the program's own, which `HOME` names from the first use to the program's end.
/// Its settings let no log rotate: what rotation costs hangs on the disk, and no peer does it. From
/// then on the process counts as one of several threads, as a browser does: locks cost their price.
class LogHome {
  public:
    static const LogHome& get();

    /// The folder of the log files.
    std::string logs() const { return m_path + "/Library/Logs/Zerva/"; }

    LogHome(const LogHome&) = delete;
    LogHome& operator=(const LogHome&) = delete;

  private:
    LogHome();
    ~LogHome();

    std::string m_path;
};

/// Empties a file, outside the measured time, before it has grown by more than a few megabytes:
/// every case writes to pages of the same age. The file is one opened for appending.
class Emptied {
  public:
    explicit Emptied(std::string path);
    ~Emptied();
    Emptied(const Emptied&) = delete;
    Emptied& operator=(const Emptied&) = delete;

    /// To be told of each write.
    void grewBy(benchmark::State& state, std::size_t bytes) {
        m_size += bytes;
        if (m_size >= kMostBytes) empty(state);
    }

  private:
    static constexpr std::size_t kMostBytes = 16 << 20;

    void empty(benchmark::State& state);

    std::string m_path;
    std::size_t m_size = 0;
};

/// The peer of every log: write(2) to a file of the log's folder, opened as the log opens its own.
class BareFile {
  public:
    explicit BareFile(const std::string& name);
    ~BareFile();
    BareFile(const BareFile&) = delete;
    BareFile& operator=(const BareFile&) = delete;

    /// Ends the program when the system does not take all of it.
    void write(const std::string& line) const;

    const std::string& path() const { return m_path; }

  private:
    std::string m_path;
    int m_descriptor;
};
