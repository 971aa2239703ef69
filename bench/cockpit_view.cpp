#include "bench/cockpit_view.h"

#include <array>
#include <charconv>
#include <cmath>

#include "bench/devices/faults.h"

namespace bench {

namespace {

constexpr double kSmallestChange = 0.01;

// "1" for a line, "1.17" for device 17 on line 1.
class Key {
  public:
    explicit Key(int port) { append(port); }
    Key(int port, int id) {
        append(port);
        text_[length_++] = '.';
        append(id);
    }
    std::string_view view() const { return {text_.data(), length_}; }

  private:
    void append(int number) {
        const auto end = std::to_chars(text_.data() + length_, text_.data() + text_.size(), number);
        length_ = static_cast<std::size_t>(end.ptr - text_.data());
    }

    std::array<char, 32> text_{};
    std::size_t length_ = 0;
};

}  // namespace

class CockpitView::DeltaSink : public StateSink {
  public:
    DeltaSink(JsonWriter& writer, Values& told, std::string_view section, bool section_open, std::string_view key)
        : writer_(writer), told_(told), section_(section), section_open_(section_open), key_(key) {}

    void number(std::string_view name, double value) override {
        Value& last = next();
        const double rounded = std::nearbyint(value / kSmallestChange) * kSmallestChange;
        if (fresh_ || last.number != rounded) {
            last.number = rounded;
            open();
            writer_.name(name).value(rounded);
        }
    }
    void text(std::string_view name, std::string_view value) override {
        Value& last = next();
        if (fresh_ || last.text != value) {
            last.text = value;
            open();
            writer_.name(name).value(value);
        }
    }
    void flag(std::string_view name, bool value) override {
        Value& last = next();
        if (fresh_ || (last.number != 0) != value) {
            last.number = value ? 1 : 0;
            open();
            writer_.name(name).value(value);
        }
    }

    // Closes what has been opened; true when the section is open now.
    bool finish() {
        if (opened_) {
            writer_.end_object();
        }
        return section_open_;
    }

  private:
    Value& next() {
        fresh_ = count_ >= told_.size();
        if (fresh_) {
            told_.emplace_back();
        }
        return told_[count_++];
    }
    void open() {
        if (!section_open_) {
            writer_.name(section_).begin_object();
            section_open_ = true;
        }
        if (!opened_) {
            writer_.name(key_).begin_object();
            opened_ = true;
        }
    }

    JsonWriter& writer_;
    Values& told_;
    std::string_view section_;
    bool section_open_;
    std::string_view key_;
    std::size_t count_ = 0;
    bool fresh_ = false;
    bool opened_ = false;
};

// Where an instrument stands, and what it suffers.
struct CockpitView::Place {
    int port;
    int id;
    Fault fault;
};

template <typename Visit>
void CockpitView::for_each_instrument(Visit&& visit) const {
    for (const BenchLine& line : devices_.lines()) {
        if (line.instrument != nullptr) {
            visit(Place{line.port, LineInstrument::kNoId, line.instrument->fault()}, *line.instrument);
        }
        for (int id = 1; line.bus != nullptr && id <= bus::kHighestGaugeId; ++id) {
            if (const Device* device = line.bus->device(id)) {
                visit(Place{line.port, id, line.bus->fault(id)}, *device);
            }
        }
    }
}

const std::string& CockpitView::everything() {
    writer_.clear();
    writer_.begin_object().name("type").value("layout");
    write_layout();
    // What the other pages have been told stays as it is: they must not miss what has changed since.
    Told nobody;
    write_values(nobody);
    writer_.end_object();
    return writer_.text();
}

const std::string& CockpitView::changes() {
    if (told_layout_ != devices_.layout_version()) {
        told_layout_ = devices_.layout_version();
        told_.clear();
        return everything();
    }
    writer_.clear();
    writer_.begin_object().name("type").value("values");
    const bool changed = write_values(told_);
    writer_.end_object();
    return changed ? writer_.text() : nothing_;
}

void CockpitView::write_layout() {
    writer_.name("lines").begin_array();
    for (const BenchLine& line : devices_.lines()) {
        writer_.begin_object().name("port").value(line.port).name("role").value(line.role);
        writer_.name("simulated").value(line.bus != nullptr || line.instrument != nullptr).end_object();
    }
    writer_.end_array().name("instruments").begin_array();
    for_each_instrument([this](const Place& place, const auto& instrument) {
        write_instrument(place, instrument.identity(), devices_.print_of(instrument));
    });
    writer_.end_array();
}

void CockpitView::write_instrument(const Place& place, const Identity& identity, const FacePrint& print) {
    writer_.begin_object().name("key").value(Key(place.port, place.id).view());
    writer_.name("port").value(place.port).name("id").value(place.id).name("type").value(identity.type);
    writer_.name("model").value(identity.model).name("version").value(identity.version);
    writer_.name("face").value(print.face).name("typeName").value(print.type_name);
    writer_.name("needles").begin_array();
    for (const NeedlePrint& needle : print.needles) {
        writer_.begin_object().name("title").value(needle.title).name("sequence").value(needle.sequence);
        writer_.name("plate").value(needle.plate).name("points").begin_array();
        for (const ScalePoint& point : needle.points) {
            writer_.begin_array().value(point.value).value(point.position).end_array();
        }
        writer_.end_array();
        if (needle.display != 0) {
            writer_.name("display").value(needle.display);
        }
        writer_.end_object();
    }
    writer_.end_array();
    if (!print.switch_labels.empty()) {
        writer_.name("board").begin_object();
        write_labels("switches", print.switch_labels);
        write_labels("leds", print.led_labels);
        write_labels("pots", print.analogue_labels);
        writer_.end_object();
    }
    writer_.end_object();
}

void CockpitView::write_labels(std::string_view name, const std::vector<std::string>& labels) {
    writer_.name(name).begin_array();
    for (const std::string& label : labels) {
        writer_.value(label);
    }
    writer_.end_array();
}

bool CockpitView::write_values(Told& told) {
    const bool lines = write_line_values(told);
    const bool devices = write_device_values(told);
    return lines || devices;
}

bool CockpitView::write_line_values(Told& told) {
    bool open = false;
    for (const BenchLine& line : devices_.lines()) {
        const Key key(line.port);
        DeltaSink sink(writer_, told[&line], "lineValues", open, key.view());
        const LineStatistics& statistics = line.device->statistics();
        sink.flag("plugged", plugged_(line.port));
        sink.number("bytesPerSecond", static_cast<double>(line.device->bytes_per_second()));
        sink.number("framesPerSecond", static_cast<double>(line.device->frames_per_second()));
        sink.number("frames", static_cast<double>(statistics.frames_in));
        sink.number("reports", static_cast<double>(statistics.reports_out));
        sink.number("badFrames", static_cast<double>(statistics.bad_frames));
        sink.number("strayBytes", static_cast<double>(statistics.stray_bytes));
        open = sink.finish();
    }
    if (open) {
        writer_.end_object();
    }
    return open;
}

bool CockpitView::write_device_values(Told& told) {
    bool open = false;
    for_each_instrument([&](const Place& place, const auto& instrument) {
        const Key key(place.port, place.id);
        DeltaSink sink(writer_, told[&instrument], "deviceValues", open, key.view());
        sink.text("fault", fault_name(place.fault));
        instrument.show(sink);
        open = sink.finish();
    });
    if (open) {
        writer_.end_object();
    }
    return open;
}

}  // namespace bench
