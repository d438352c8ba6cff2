#pragma once

#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/foundation/KyList.h>
#include <marlet/layers/AbstractLayer.h>

namespace marlet::project
{

class EffectInstance;
class Mask;
struct TextLayer_Impl;

/// Styled text as data: a chain of tokens, one for each UTF-16 unit and each paragraph break, and a table of
/// the formats that they share. It owns both, and effects and masks. It lays nothing out and draws nothing:
/// the host's text engine reads and edits the tokens through Text.
///
/// The text lies in a frame of four bounds, in pixels. Font sizes, tracking and leading are in the host's
/// units. Text and editing state belong to the thread that edits the project; texts may be of any length.
class MARLET_EXPORT TextLayer : public AbstractLayer
{
public:
    /// The host names the values.
    enum class JustificationType : int {};
    enum class CursorPositionType : int {};

    struct Format {
        kytl::KyID id;
        WideString family;
        WideString style;
        int size = 0;
        kytl::KyColorRGBA_32f fillColor;
        kytl::KyColorRGBA_32f strokeColor;
        float strokeWidth = 0;
        float tracking = 0;
        float leading = 0;
    };

    /// One unit of the text. The chain is held forwards and known backwards.
    struct MARLET_EXPORT Token {
        static constexpr int kCharacter = 0;
        static constexpr int kParagraph = 1;

        Token() = default;
        Token(const Token &) = delete;
        Token &operator=(const Token &) = delete;
        /// Frees what it alone holds of the chain in a loop, however long that is.
        ~Token();

        int type = kCharacter;
        kytl::KyID id;
        union {
            unsigned short character = 0;    ///< of a character token, in UTF-16
            JustificationType justification; ///< of a paragraph token
        };
        std::shared_ptr<Format> format; ///< of a character token; may be empty
        std::shared_ptr<Token> next;
        std::weak_ptr<Token> previous;
    };

    /// The head of a chain. Both are empty, or last is the token that is reached from first.
    struct MARLET_EXPORT TokenList {
        std::shared_ptr<Token> first;
        std::weak_ptr<Token> last;

        void Append(const std::shared_ptr<Token> &token);
    };

    using FormatList = kytl::KyList<std::shared_ptr<Format>, std::vector>;
    using EffectList = kytl::KyList<std::shared_ptr<EffectInstance>, std::vector>;
    using MaskList = kytl::KyList<std::shared_ptr<Mask>, std::vector>;

    /// A layer without text, in a frame of that size about the origin.
    static std::shared_ptr<TextLayer> Create(const WideString &name, int width, int height);
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// MissingPluginException, InvalidPluginVersionException
    static std::shared_ptr<TextLayer>
    CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    ~TextLayer() override;

    /// Tokens with that ID, or a new one if it is null.
    static std::shared_ptr<Token>
    CreateCharToken(unsigned short character, const std::shared_ptr<Format> &format, const kytl::KyID &id);
    static std::shared_ptr<Token> CreateParagraphToken(JustificationType justification, const kytl::KyID &id);

    /// Tokens and formats of the clone have new IDs; formats in no use are left out, and so is the state of
    /// editing.
    std::shared_ptr<AbstractLayer> Clone(const kytl::KyID &compositionID) const override;
    LayerType Type() const override;
    bool HasAudio() const override;
    bool HasVideo() const override;
    LayerDimensions Dimensions() const override;
    void SetDimensions(LayerDimensions dimensions) override; ///< takes any value but ThreeDContent
    Matrix TransformationAtTime(int time, const std::shared_ptr<Project> &project,
                                bool avoidZeroScale) const override;
    Matrix OriginAtTime(int time, const std::shared_ptr<Project> &project) const override;
    using AbstractLayer::Serialize;
    Matrix AlignToMotion(const Matrix &world, int time, const std::shared_ptr<Project> &project,
                         bool avoidZeroScale) const override;
    /// A stretch of the text with its formats, as a text of its own.
    virtual WideString SerializeTokens(const std::shared_ptr<Token> &first,
                                       const std::shared_ptr<Token> &last);
    /// The reverse: replaces what is in the two arguments, and leaves the layer alone.
    /// @throws XmlParseException, std::runtime_error
    virtual void DeserializeTokens(const WideString &xml, TokenList &tokens, FormatList &formats) const;

    TokenList &Text();
    const TokenList &Text() const;
    /// The table of formats. One that a token uses has to stay in it.
    FormatList &Formats();
    const FormatList &Formats() const;
    EffectList &Effects();
    const EffectList &Effects() const;
    MaskList &Masks();
    const MaskList &Masks() const;

    /// The place of a token in the text, or -1.
    int GetTokenIndex(const std::shared_ptr<Token> &token) const;
    /// The format of the table with these values, which is added if there is none. The reference holds until
    /// the table changes.
    const std::shared_ptr<Format> &TextFormat(const WideString &family, const WideString &style, int size,
                                              const kytl::KyColorRGBA_32f &fill,
                                              const kytl::KyColorRGBA_32f &stroke, float strokeWidth,
                                              float tracking, float leading);
    /// The same for the values of a format. Where that is added, it is the argument's own reference that is
    /// returned. @throws std::invalid_argument if there is no format
    const std::shared_ptr<Format> &GetOrAddFormat(const std::shared_ptr<Format> &format);
    /// Drops the formats that no token uses.
    void CleanUpFormat();

    float MinX() const;
    float MaxX() const;
    float MinY() const;
    float MaxY() const;
    /// A bound that passes the other one of its axis changes places with it.
    void SetMinX(float x);
    void SetMaxX(float x);
    void SetMinY(float y);
    void SetMaxY(float y);
    float Width() const;
    float Height() const;

    // The state of editing, which is not saved.

    const std::shared_ptr<Token> &SelectionStart() const;
    const std::shared_ptr<Token> &SelectionEnd() const;
    void SetSelectionStart(const std::shared_ptr<Token> &token);
    void SetSelectionEnd(const std::shared_ptr<Token> &token);
    void ClearSelection();
    const std::shared_ptr<Token> &CursorPosition() const;
    CursorPositionType CursorRenderPosition() const;
    void SetCursorPosition(const std::shared_ptr<Token> &token, CursorPositionType renderPosition);
    bool IsEditingMode() const;
    void SetEditingMode(bool editing);

private:
    friend class LayerMaker;
    friend class StoredFields;

    TextLayer();
    TextLayer(const WideString &name, int width, int height);
    TextLayer(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    TextLayer(const TextLayer &other);

    // Any values, as a file may have them.
    void RestoreDimensions(LayerDimensions dimensions);
    void RestoreBounds(float minX, float maxX, float minY, float maxY);
    void Serialize(XmlWriter &writer, const ProjectTextureImageCache &textures) const override;
    std::vector<ObjectPropertyList> ChildLayerReferencePropertyNames() const override;
    void ClearChildInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs) override;
    void ChangeChildLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes) override;
    bool IsChildLayerReferenced(const std::shared_ptr<CompositionAsset> &composition,
                                const kytl::KyID &layerID) const override;

    ValuePtr<TextLayer_Impl> impl_;
};

} // namespace marlet::project
