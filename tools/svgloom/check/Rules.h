// What a check of artwork can say: one row for each finding, with its id, its severity, its message
// and when it comes.

#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace svgloom {

/// In the order of the table.
enum class Rule : std::uint8_t {
    // The file.
    kFile,
    kEncoding,
    kNul,
    kXml,
    kNesting,
    kRoot,
    kSecondRoot,
    kEntity,
    kMoreFindings,
    // What ends the reading of the whole artwork.
    kClipPathShort,
    kGradientHrefEmpty,
    kDeclarationNoColon,
    kSelectorEmpty,
    // Elements.
    kElementUnsupported,
    kElementIgnored,
    kElementUnknown,
    kElementPrefix,
    kShapeEmpty,
    kIdDuplicate,
    // Names that are not read.
    kAttributeUnread,
    kAttributeUnknown,
    kAttributeTwice,
    kPropertyUnread,
    kPropertyUnknown,
    // Sizes and places.
    kViewBoxInvalid,
    kViewBoxEmpty,
    kViewBoxMissing,
    kPreserveAspectRatio,
    kLengthInvalid,
    kLengthUnit,
    kPercentDiagonal,
    kNegativeSize,
    kSizeRatio,
    kRoundedRect,
    kPointsInvalid,
    kPointsOdd,
    // Path data.
    kPathStopped,
    kPathCommand,
    kPathMove,
    kPathArcRotation,
    kPathSmooth,
    kPathQuadratic,
    kPathNegativeArc,
    kPathNotFinite,
    // Transforms.
    kTransformInvalid,
    kTransformOrder,
    kTransformRoot,
    // Values of properties.
    kNumberInvalid,
    kNumberPercent,
    kKeywordInvalid,
    kKeywordDefault,
    kImportant,
    kColorInvalid,
    kColorCut,
    kVariableFallback,
    kDisplay,
    kVisibility,
    kOpacityOverlap,
    kStrokeWidthInvalid,
    kStrokeStaysOff,
    kDashInvalid,
    kDashOffset,
    // Gradients.
    kPaintUnknown,
    kPaintLater,
    kGradientOpacity,
    kGradientStroke,
    kGradientUnits,
    kGradientHrefUnknown,
    kGradientHrefForm,
    kGradientStopsAdded,
    kGradientUneven,
    kSpreadMethod,
    kRadialStops,
    kRadialFocus,
    kRadialRadius,
    kStopVariable,
    // Clip paths.
    kClipPathForm,
    kClipPathUnknown,
    kClipPathLater,
    kClipPathEmpty,
    kClipPathUnits,
    kClipPathChild,
    kClipPathClipped,
    // References.
    kUseHref,
    kUseUnknown,
    kUseStyle,
    kUseSize,
    kUseCycle,
    kUseMultiplies,
    kUseLevels,
    kSymbolViewBox,
    kSymbolStyle,
    // Style sheets and style attributes.
    kStyleComment,
    kDeclarationOpen,
    kDeclarationTwice,
    kClassOverStyle,
    kClassOrder,
    kSelectorUnmatched,
    kAtRule,
    kStyleLate,
    kStyleSplit,
    kStyleMedia,
};

enum class RuleSeverity : std::uint8_t {
    kError,    // something is never drawn
    kWarning,  // something is drawn differently
};

struct RuleRow {
    Rule rule;
    std::string_view id;
    RuleSeverity severity;
    std::string_view message;  // "%1" and "%2" stand for what was found
    std::string_view when;
};

std::span<const RuleRow> RuleTable();
const RuleRow& RowOf(Rule rule);

/// Null if there is none of that id.
const RuleRow* FindRule(std::string_view id);

/// The rule's message with the two texts in it.
std::string MessageOf(Rule rule, std::string_view first, std::string_view second);

}  // namespace svgloom
