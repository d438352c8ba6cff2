#pragma once

#include <marlet/layers/StyledText.h>
#include <marlet/layers/TextLayer.h>

namespace marlet::project
{

struct TextLayer_Impl {
    /// What is selected and where the cursor is while the host edits the text.
    struct EditingState {
        std::shared_ptr<TextLayer::Token> selectionStart;
        std::shared_ptr<TextLayer::Token> selectionEnd;
        std::shared_ptr<TextLayer::Token> cursor;
        bool isEditing = false;
    };

    LayerDimensions dimensions = LayerDimensions::TwoD;
    float minX = 0;
    float maxX = 0;
    float minY = 0;
    float maxY = 0;
    StyledText text;
    TextLayer::EffectList effects;
    TextLayer::MaskList masks;
    Uncopied<EditingState> editing;
    TextLayer::CursorPositionType cursorRenderPosition{};
};

} // namespace marlet::project
