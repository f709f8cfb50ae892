#include "support/Report.h"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <sstream>

#include "support/Registry.h"

namespace ZPA::Benchmarks {
namespace {

std::string Fixed(double value, int decimals) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

double NanosecondsPerPixel(Row const& row, double seconds) {
    return seconds * 1e9 / (static_cast<double>(row.width) * row.height);
}

std::string Gigabytes(double bytes) { return Fixed(bytes / 1e9, 1) + " GB/s"; }

std::string Quoted(std::string const& text) {
    std::string quoted = "\"";
    for (char const c : text) {
        if (static_cast<unsigned char>(c) < 0x20) continue;
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

std::string Number(double value) {
    std::ostringstream text;
    text << std::setprecision(6) << value;
    return text.str();
}

}  // namespace

Table::Table(std::ostream& out, std::vector<Row const*> const& rows)
    : out_(out), operationWidth_(9), typeWidth_(4), sizeWidth_(4) {
    for (Row const* row : rows) {
        operationWidth_ = std::max(operationWidth_, static_cast<int>(row->operation.size()));
        typeWidth_ = std::max(typeWidth_, static_cast<int>(row->type.size()));
        sizeWidth_ = std::max(sizeWidth_, static_cast<int>(SizeOf(*row).size()));
    }
}

void Table::Head(Machine const& machine) {
    out_ << "Processor: " << machine.processor << ", kernels for " << machine.instructionSet << "\n"
         << "Threads: " << machine.threads << ", of ours and of the peers\n"
         << "Compiler: " << machine.compiler << "\n"
         << "Memory: copies " << Gigabytes(machine.copyBytesPerSecond) << " (read and written), reads "
         << Gigabytes(machine.readBytesPerSecond) << "\n";
    for (Peer const& peer : machine.peers)
        out_ << peer.name << ": "
             << (peer.version.empty() ? "not installed, its columns stay empty" : peer.version) << "\n";
    if (!machine.optimised) out_ << "Built without optimisation: the figures mean little.\n";
    out_ << "\n"
            "ns/pixel  our time, the median\n"
            "ratio     the peer's time divided by ours: above 1 we are faster; the median and the quartiles "
            "of\n"
            "          what was timed side by side\n"
            "memory    share of the bandwidth: the time of plainly copying (or reading, where nothing is\n"
            "          written) as many bytes, divided by our time; 100 % is the speed of memcpy\n\n";
    Cells("operation", "type", "size", "ns/pixel", "ratio", "quartiles", "memory", "peer");
}

void Table::Line(Result const& result) {
    Row const& row = *result.row;
    if (!result.failure.empty()) {
        Cells(row.operation, row.type, SizeOf(row), "FAILED", "", "", "", result.failure);
        return;
    }
    Measurement const& m = result.measurement;
    Cells(row.operation, row.type, SizeOf(row), Fixed(NanosecondsPerPixel(row, m.seconds), 3),
          m.ratio ? Fixed(m.ratio->median, 2) : "-",
          m.ratio ? Fixed(m.ratio->low, 2) + " to " + Fixed(m.ratio->high, 2) : "",
          m.share ? Fixed(100 * *m.share, 0) + " %" : "-", m.peer);
}

void Table::Cells(std::string const& operation, std::string const& type, std::string const& size,
                  std::string const& time, std::string const& ratio, std::string const& spread,
                  std::string const& share, std::string const& peer) {
    out_ << std::left << std::setw(operationWidth_) << operation << "  " << std::setw(typeWidth_) << type
         << "  " << std::right << std::setw(sizeWidth_) << size << std::setw(11) << time << std::setw(8)
         << ratio << "  " << std::left << std::setw(14) << spread << std::right << std::setw(7) << share
         << "  " << peer << "\n"
         << std::flush;
}

void WriteMarkdown(std::ostream& out, Machine const& machine, std::vector<Result> const& results) {
    out << "- Processor: " << machine.processor << ", kernels for " << machine.instructionSet
        << "\n- Threads: " << machine.threads
        << ", of ours and of the peers\n- Compiler: " << machine.compiler
        << (machine.optimised ? "" : ", WITHOUT OPTIMISATION") << "\n- Memory: copies "
        << Gigabytes(machine.copyBytesPerSecond) << ", reads " << Gigabytes(machine.readBytesPerSecond)
        << "\n- Peers:";
    char const* separator = " ";
    for (Peer const& peer : machine.peers) {
        if (peer.version.empty()) continue;
        out << separator << peer.name << " " << peer.version;
        separator = ", ";
    }
    out << "\n\n| Operation | Type | Size | ns/pixel | Ratio | Quartiles | Memory | Peer |\n"
           "|---|---|--:|--:|--:|---|--:|---|\n";
    for (Result const& result : results) {
        Row const& row = *result.row;
        Measurement const& m = result.measurement;
        out << "| " << row.operation << " | " << row.type << " | " << SizeOf(row) << " | ";
        if (!result.failure.empty())
            out << "failed | | | | " << result.failure;
        else
            out << Fixed(NanosecondsPerPixel(row, m.seconds), 3) << " | "
                << (m.ratio ? Fixed(m.ratio->median, 2) : "") << " | "
                << (m.ratio ? Fixed(m.ratio->low, 2) + " to " + Fixed(m.ratio->high, 2) : "") << " | "
                << (m.share ? Fixed(100 * *m.share, 0) + " %" : "") << " | " << m.peer;
        out << " |\n";
    }
}

void WriteJson(std::ostream& out, Machine const& machine, std::vector<Result> const& results) {
    out << "{\n  \"machine\": {\n    \"processor\": " << Quoted(machine.processor)
        << ",\n    \"instructionSet\": " << Quoted(machine.instructionSet)
        << ",\n    \"compiler\": " << Quoted(machine.compiler)
        << ",\n    \"optimised\": " << (machine.optimised ? "true" : "false")
        << ",\n    \"threads\": " << machine.threads << ",\n    \"memoryBytes\": " << machine.memoryBytes
        << ",\n    \"copyBytesPerSecond\": " << Number(machine.copyBytesPerSecond)
        << ",\n    \"readBytesPerSecond\": " << Number(machine.readBytesPerSecond) << ",\n    \"peers\": {";
    char const* separator = "";
    for (Peer const& peer : machine.peers) {
        out << separator << Quoted(peer.name) << ": "
            << (peer.version.empty() ? "null" : Quoted(peer.version));
        separator = ", ";
    }
    out << "}\n  },\n  \"rows\": [";
    separator = "\n";
    for (Result const& result : results) {
        Row const& row = *result.row;
        Measurement const& m = result.measurement;
        out << separator << "    {\"operation\": " << Quoted(row.operation)
            << ", \"type\": " << Quoted(row.type) << ", \"width\": " << row.width
            << ", \"height\": " << row.height;
        if (!result.failure.empty()) {
            out << ", \"failure\": " << Quoted(result.failure);
        } else {
            out << ", \"nanosecondsPerPixel\": " << Number(NanosecondsPerPixel(row, m.seconds));
            if (m.ratio)
                out << ", \"peer\": " << Quoted(m.peer)
                    << ", \"peerNanosecondsPerPixel\": " << Number(NanosecondsPerPixel(row, *m.peerSeconds))
                    << ", \"ratio\": " << Number(m.ratio->median) << ", \"ratioQuartiles\": ["
                    << Number(m.ratio->low) << ", " << Number(m.ratio->high) << "]";
            if (m.share) out << ", \"bandwidthShare\": " << Number(*m.share);
        }
        out << "}";
        separator = ",\n";
    }
    out << "\n  ]\n}\n";
}

}  // namespace ZPA::Benchmarks
