#pragma once

#include "simlink/sim_com.h"
#include "tables/core_tables.h"

namespace iomodule {

// IomSeqNr of a keystroke row; below stands the sequence number of a function.
inline constexpr int kFirstKeystroke = 100;
inline constexpr int kKeystrokeToSimulator = 100;

// IomMode of a switch row, any combination; 0 = absolute.
inline constexpr unsigned kIncrementOffOn = 1;
inline constexpr unsigned kIncrementOnOff = 2;
inline constexpr unsigned kRotate = 4;

// IomValueA or IomValueB of an absolute row: nothing happens at that edge.
inline constexpr float kNoAction = -1.0F;

// The keystroke rows are those whose sequence number says so.
constexpr bool is_keystroke(const tables::IomRow& row) {
    return row.IomSeqNr >= kFirstKeystroke;
}

enum class Edge { off_on, on_off };

// Does what a switch row says of this edge: writes or steps its simulator function, or sends its key. May show
// messages. Throws a Failure where its values lead to none that can be written.
void act_on_switch(simlink::SimCom& sim_com, const tables::CoreTables& tables, const tables::IomRow& row, Edge edge);

}  // namespace iomodule
