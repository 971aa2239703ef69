#include "iomodule/switch_action.h"

#include <algorithm>

#include "iomodule/iom_rows.h"

namespace iomodule {

namespace {

void send_key(simlink::SimCom& sim_com, const tables::IomRow& row, Edge edge) {
    const std::int16_t key = edge == Edge::off_on ? row.IomKeyOffOn : row.IomKeyOnOff;
    if (row.IomSeqNr == kKeystrokeToSimulator) {
        sim_com.SendKeystroke(key);
    } else {
        sim_com.SendKeystrokeLocal(key);
    }
}

// Beyond one end of the range a value goes on at the other end.
float rotated(float value, const tables::FunctionRow& function) {
    if (value < function.FunctionMinimum) {
        value = function.FunctionMaximum;
    }
    if (value > function.FunctionMaximum) {
        value = function.FunctionMinimum;
    }
    return value;
}

float limited(float value, const tables::FunctionRow& function) {
    if (value < function.FunctionMinimum) {
        value = function.FunctionMinimum;
    }
    if (value > function.FunctionMaximum) {
        value = function.FunctionMaximum;
    }
    return value;
}

void step_function(simlink::SimCom& sim_com, const tables::FunctionRow& function, const tables::IomRow& row,
                   Edge edge) {
    const auto mode = static_cast<unsigned>(row.IomMode);
    const unsigned wanted = edge == Edge::off_on ? kIncrementOffOn : kIncrementOnOff;
    float value = 0;
    // NOTE: without a present value (a write of this row is still on its way) there is nothing to step from.
    if ((mode & wanted) == 0 || !sim_com.GetPort(row.IomSimPort, value)) {
        return;
    }
    value += edge == Edge::off_on ? row.IomValueA : row.IomValueB;
    value = (mode & kRotate) != 0 ? rotated(value, function) : limited(value, function);
    sim_com.PutPort(row.IomSimPort, value);
}

// The percentage is one of the range alone; the minimum is not added.
void set_function(simlink::SimCom& sim_com, const tables::FunctionRow& function, const tables::IomRow& row, Edge edge) {
    const float percentage = edge == Edge::off_on ? row.IomValueA : row.IomValueB;
    if (percentage == kNoAction) {
        return;
    }
    const float range = (function.FunctionMaximum - function.FunctionMinimum) / 100.0F;
    float value = range * percentage;
    sim_com.PutPort(row.IomSimPort, value);
}

}  // namespace

void act_on_switch(simlink::SimCom& sim_com, const tables::CoreTables& tables, const tables::IomRow& row, Edge edge) {
    if (is_keystroke(row)) {
        send_key(sim_com, row, edge);
    } else if (row.IomMode != 0) {
        step_function(sim_com, function_of(tables, row), row, edge);
    } else {
        set_function(sim_com, function_of(tables, row), row, edge);
    }
}

}  // namespace iomodule
