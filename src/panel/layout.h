#pragma once

#include <string>
#include <utility>
#include <vector>

namespace panel {

class Control;

enum class LayoutKind {
    control,
    column,  // one below the other
    row,     // side by side, wrapping where the page is narrow
    frame,   // a column with a border and a caption
    tabs,    // children are frames, of which one shows at a time
    board,   // rows of so many small controls of a kind, close together, each under the one above
};

// How a panel's controls are grouped; a tree in the order in which the page shows them.
struct LayoutNode {
    LayoutKind kind = LayoutKind::column;
    std::string caption;
    Control* control = nullptr;
    std::vector<LayoutNode> children;
    int columns = 0;  // of a board

    LayoutNode() = default;
    LayoutNode(Control& shown)
        : kind(LayoutKind::control), control(&shown) {}  // NOLINT: a control stands for its place
    LayoutNode(LayoutKind node_kind, std::string node_caption, std::vector<LayoutNode> nodes)
        : kind(node_kind), caption(std::move(node_caption)), children(std::move(nodes)) {}
};

inline LayoutNode column(std::vector<LayoutNode> children) {
    return {LayoutKind::column, {}, std::move(children)};
}
inline LayoutNode row(std::vector<LayoutNode> children) {
    return {LayoutKind::row, {}, std::move(children)};
}
inline LayoutNode frame(std::string caption, std::vector<LayoutNode> children) {
    return {LayoutKind::frame, std::move(caption), std::move(children)};
}
inline LayoutNode board(int columns, std::vector<LayoutNode> children) {
    LayoutNode node(LayoutKind::board, {}, std::move(children));
    node.columns = columns;
    return node;
}
inline LayoutNode tabs(std::vector<LayoutNode> frames) {
    return {LayoutKind::tabs, {}, std::move(frames)};
}

}  // namespace panel
