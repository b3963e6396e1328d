#pragma once

#include <fathom/Export.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObject.hpp>

#include <cstdint>
#include <string>

namespace Orla {

/// What a processing object says of its state: a text with simple HTML markup, as
/// user interfaces show it, and how to show it.
///
/// Text form: the text alone.
class FATHOM_API VObjectStatus {
public:
    /// Four channels from 0 to 255.
    struct Color {
        std::uint8_t red = 0;
        std::uint8_t green = 0;
        std::uint8_t blue = 0;
        std::uint8_t alpha = 0;

        friend constexpr bool operator==(const Color&, const Color&) noexcept = default;
    };

    enum class Severity { Information, Warning, Error };

    VObjectStatus();
    explicit VObjectStatus(const std::string& theText);
    VObjectStatus(const VObjectStatus&) = default;
    VObjectStatus& operator=(const VObjectStatus&) = default;
    ~VObjectStatus();

    friend bool operator==(const VObjectStatus&, const VObjectStatus&) = default;

    /// What \p severity the markup around the text stands for; an unmarked text is
    /// an information.
    Severity severity() const;

    /// The text for those who cannot show markup, such as terminals: without tags,
    /// a line feed for each `<BR>`, and with characters in place of entities.
    /// What looks like a tag or an entity but is none stays as it is.
    std::string plainText() const;

    /// \p plain with the markup of \p severity around it.
    static std::string marked(Severity severity, const std::string& plain);

    /// \p plain with "<", ">" and "&" replaced by entities: for texts from elsewhere,
    /// such as names of files, which are to be shown as they are.
    static std::string escaped(const std::string& plain);

    std::string text;
    Color background;
    Color foreground{192, 192, 192, 255};
    std::int32_t level = 0;
};

template<>
struct FATHOM_API VValueTrait<VObjectStatus> {
    static std::string Text(const VObjectStatus& status);

    /// Takes any text, and leaves the rest of the status as it is.
    static bool setValueFromText(VObjectStatus& status, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<VObjectStatus>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<VObjectStatus>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<VObjectStatus>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<VObjectStatus>;
extern template FATHOM_EXTERN_TEMPLATE bool operator<<(const VOutputAssignmentContext<VObjectStatus>&,
                                                       const VObjectStatus&);
extern template FATHOM_EXTERN_TEMPLATE bool operator>>(const VOutputAssignmentContext<VObjectStatus>&, VObjectStatus&);

/// Gives a processing object an output for its status. A message replaces the one
/// before, whatever kind that was; repeating it announces no change.
///
/// Texts may have markup; see `VObjectStatus::escaped` for those that must not.
class FATHOM_API StatusIndicator {
public:
    /// What the output is usually called.
    static constexpr char Slotname[] = "status";

    /// Offers the output \p outputName of \p object, which starts from
    /// \p initialText; the number is not used. Messages of an indicator without
    /// an object show nowhere.
    StatusIndicator(VObject* object, const std::string& initialText, int level, const std::string& outputName);
    virtual ~StatusIndicator();

    /// Shows \p text in \p pool.
    void setStatusInfo(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    /// Shows \p text as a warning.
    void setStatusWarning(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    /// Shows \p text as an error. With \p announce set, all action notifiers hear of
    /// it each time: `CLASS{POOL} "OBJECT" Error: TEXT`.
    void setStatusError(const StrongPtr<ValuePool>& pool, const std::string& text, bool announce) const;

    const StrongPtr<VValueParameter<VObjectStatus>, ValueNotifierList>& statusOutput() const noexcept
    {
        return m_output;
    }

private:
    void show(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    StrongPtr<VValueParameter<VObjectStatus>, ValueNotifierList> m_output;
};

/// Base of processing objects whose update gives up by throwing a text, which
/// becomes their status.
class FATHOM_API CatchStatus : public VObject, public StatusIndicator {
public:
    /// The output is called `StatusIndicator::Slotname` and starts empty.
    CatchStatus(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& preferences);
    ~CatchStatus() override;

    /// As `update`. A `char const*` that it throws is shown as an information;
    /// everything else that it throws goes on to the caller of `update`.
    virtual void safeUpdate(VRequest& request, double precision) = 0;

    /// Calls `safeUpdate`; true.
    bool update(VRequest& request, double precision) override;
};

} // namespace Orla
