// The walk keeps a stack of its own: references chain as deep as the file is long.

#include "tools/svgloom/check/References.h"

#include <algorithm>

#include "svgloom/src/DrawingWalk.h"

namespace svgloom {

namespace {

using SVGLoom::AttributeName;
using SVGLoom::DrawingWalk;

/// Sums stop here: references multiply beyond all numbers.
constexpr std::uint64_t kManyVisits = std::uint64_t{1} << 40U;
constexpr std::uint32_t kManyLevels = std::uint32_t{1} << 20U;

}  // namespace

References::Index References::Add(const Entry& entry, std::string_view id)
{
    const auto index = static_cast<Index>(nodes_.size());
    Node& node = nodes_.emplace_back();
    node.entry = entry;
    if (entry.parent != kNone) {
        Node& parent = nodes_[entry.parent];
        (parent.firstChild == kNone ? parent.firstChild : nodes_[parent.lastChild].nextSibling) =
            index;
        parent.lastChild = index;
    }
    if (!id.empty()) {
        const auto [place, isNew] = ids_.Add(id);
        if (isNew) {
            place = index;
        }
    }
    return index;
}

void References::AddShape(Index parent, PropertyBits taken, bool fillsGradient)
{
    Node& node = nodes_[parent];
    node.visits = std::min(node.visits + 1, kManyVisits);
    node.levels = std::max(node.levels, std::uint32_t{2});
    node.entry.taken |= taken;
    node.entry.fillsGradient = node.entry.fillsGradient || fillsGradient;
}

void References::Check(Reporter& reporter)
{
    for (Node& node : nodes_) {
        if (!node.entry.isUse) {
            continue;
        }
        if (const Index* const target = ids_.Find(node.entry.target)) {
            node.targetNode = *target;
            if (node.entry.hasSize && nodes_[*target].entry.isSymbol) {
                reporter.Report(Rule::kUseSize, node.entry.offset);
            }
        } else {
            reporter.Report(Rule::kUseUnknown, node.entry.offset, Shown(node.entry.target));
        }
    }
    for (Index i = 0; i < nodes_.size(); ++i) {
        Visit(i, reporter);
    }
    // The first node is the root, where a draw starts.
    if (!nodes_.empty() &&
        nodes_[0].visitsBelowUse > static_cast<std::uint64_t>(DrawingWalk::kMaxReferenceVisits)) {
        reporter.Report(Rule::kUseMultiplies, nodes_[0].entry.offset,
                        std::to_string(DrawingWalk::kMaxReferenceVisits));
    }
    // The group that holds the root is a level too.
    if (!nodes_.empty() && nodes_[0].levels + 1 > DrawingWalk::kMaxLevels) {
        reporter.Report(Rule::kUseLevels, nodes_[0].entry.offset,
                        std::to_string(DrawingWalk::kMaxLevels));
    }
}

/// Depth first: whatever a node leads to is finished before it.
void References::Visit(Index start, Reporter& reporter)
{
    if (nodes_[start].state != Node::State::kNew) {
        return;
    }
    std::vector<Step> stack;
    const auto enter = [this, &stack](Index index) {
        Node& node = nodes_[index];
        node.state = Node::State::kOpen;
        stack.push_back({index, node.entry.isUse ? node.targetNode : node.firstChild});
    };
    enter(start);
    while (!stack.empty()) {
        Step& step = stack.back();
        Node& node = nodes_[step.node];
        const Index child = step.nextChild;
        if (child == kNone) {
            node.state = Node::State::kDone;
            node.entry.taken &= ~node.entry.own;
            stack.pop_back();
            continue;
        }
        switch (nodes_[child].state) {
            case Node::State::kNew:
                enter(child);  // and comes again when it is done
                break;
            case Node::State::kOpen:
                TellCycle(stack, reporter);
                step.nextChild = node.entry.isUse ? kNone : nodes_[child].nextSibling;
                break;
            case Node::State::kDone:
                TakeOver(node, nodes_[child]);
                if (node.entry.isUse) {
                    CheckStyles(node, nodes_[child], reporter);
                }
                step.nextChild = node.entry.isUse ? kNone : nodes_[child].nextSibling;
                break;
        }
    }
}

/// A group does not stand in itself: the last use on the way closes the circle.
void References::TellCycle(const std::vector<Step>& stack, Reporter& reporter)
{
    const auto last = std::find_if(stack.rbegin(), stack.rend(), [this](const Step& step) {
        return nodes_[step.node].entry.isUse;
    });
    if (last != stack.rend() && !nodes_[last->node].isCycle) {
        nodes_[last->node].isCycle = true;
        reporter.Report(Rule::kUseCycle, nodes_[last->node].entry.offset);
    }
}

void References::TakeOver(Node& node, const Node& child)
{
    node.visits = std::min(node.visits + child.visits, kManyVisits);
    node.visitsBelowUse =
        std::min(node.visitsBelowUse + (node.entry.isUse ? child.visits : child.visitsBelowUse),
                 kManyVisits);
    node.levels = std::min(std::max(node.levels, child.levels + 1), kManyLevels);
    node.entry.taken |= child.entry.taken;
    node.entry.fillsGradient = node.entry.fillsGradient || child.entry.fillsGradient;
}

void References::CheckStyles(const Node& use, const Node& target, Reporter& reporter) const
{
    if (use.entry.isTranslucent && target.entry.fillsGradient) {
        reporter.Report(Rule::kGradientOpacity, use.entry.offset);
    }
    if (use.entry.texts == target.entry.texts) {
        return;
    }
    std::string names;
    for (std::size_t i = 0; i < SVGLoom::kPropertyCount; ++i) {
        const auto property = static_cast<AttributeName>(i);
        if ((target.entry.taken & BitOf(property)) != 0 &&
            (*use.entry.texts)[i] != (*target.entry.texts)[i]) {
            names.append(names.empty() ? "" : ", ").append(SVGLoom::TextOf(property));
        }
    }
    if (!names.empty()) {
        reporter.Report(Rule::kUseStyle, use.entry.offset, names, "#" + Shown(use.entry.target));
    }
}

}  // namespace svgloom
