#include "parser/ast.h"

#include <array>
#include <bit>

namespace pellum {

namespace {

thread_local Node* deadNodes = nullptr;
thread_local bool isDeletingNodes = false;

struct Link {
    std::uint32_t low, high;
};

}  // namespace

void NodeDeleter::operator()(Node* node) const noexcept {
    // A dead node's position is of no more use, so its two words hold the link of the list.
    const auto [low, high] = std::bit_cast<Link>(deadNodes);
    node->line = low;
    node->column = high;
    deadNodes = node;
    if (isDeletingNodes) return;  // the loop below is already running further up the stack

    isDeletingNodes = true;
    while (deadNodes) {
        Node* next = deadNodes;
        deadNodes = std::bit_cast<Node*>(Link{next->line, next->column});
        delete next;
    }
    isDeletingNodes = false;
}

BinaryOp binaryOp(std::string_view text) noexcept {
    constexpr std::array<std::string_view, 15> texts = {
        "+", "-", "*", "/", "//", "%", "^", "==", "!=", "<", "<=", ">", ">=", "and", "or"};
    for (std::size_t number = 0; number < texts.size(); ++number) {
        if (texts[number] == text) return static_cast<BinaryOp>(number);
    }
    return BinaryOp::Unknown;
}

}  // namespace pellum
