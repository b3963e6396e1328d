#pragma once

#include <fathom/Export.hpp>
#include <fathom/VOutput.hpp>

#include <trellis/VObject.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace Orla {

/// The status of a processing object: a text with simple HTML markup, which user interfaces
/// show, and how to show it.
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

    VObjectStatus();
    explicit VObjectStatus(const std::string& theText);
    VObjectStatus(const VObjectStatus&) = default;
    VObjectStatus& operator=(const VObjectStatus&) = default;
    ~VObjectStatus();

    friend bool operator==(const VObjectStatus&, const VObjectStatus&) = default;

    std::string text;
    Color background;
    Color foreground{192, 192, 192, 255};
    std::int32_t level = 0;
};

template<>
struct FATHOM_API VValueTrait<VObjectStatus> {
    static std::string Text(const VObjectStatus& status);

    /// Accepts every text, and leaves the rest of the status unchanged.
    static bool setValueFromText(VObjectStatus& status, const std::string& text);
};

extern template class FATHOM_EXTERN_TEMPLATE VTypedValueBase<VObjectStatus>;
extern template class FATHOM_EXTERN_TEMPLATE VValue<VObjectStatus>;
extern template class FATHOM_EXTERN_TEMPLATE TypedValueCreator<VObjectStatus>;
extern template class FATHOM_EXTERN_TEMPLATE VValueParameter<VObjectStatus>;
extern template FATHOM_EXTERN_TEMPLATE bool operator<<(const VOutputAssignmentContext<VObjectStatus>&,
                                                       const VObjectStatus&);
extern template FATHOM_EXTERN_TEMPLATE bool operator>>(const VOutputAssignmentContext<VObjectStatus>&, VObjectStatus&);

/// The markup that `StatusIndicator` puts around the texts of warnings and errors.
struct StatusMarkup {
    static constexpr std::string_view StartOfWarning = "<FONT COLOR=magenta>";
    static constexpr std::string_view StartOfError = "<FONT COLOR=red>";
    static constexpr std::string_view End = "</FONT>";
};

/// Adds an output for the status of a processing object. Each message replaces the previous
/// one, whatever its kind; repeating a message announces no change.
///
/// Texts may have markup; `escaped` is for those that must not.
class FATHOM_API StatusIndicator {
public:
    /// The usual name of the output.
    static constexpr char Slotname[] = "status";

    /// Adds the output \p outputName to \p object, with the text \p initialText; \p level is
    /// not used. Without an object, messages are not shown.
    StatusIndicator(VObject* object, const std::string& initialText, int level, const std::string& outputName);
    virtual ~StatusIndicator();

    /// Returns \p plain with "<", ">" and "&" replaced by entities. For external texts, such
    /// as file names, that must be shown unchanged.
    static std::string escaped(const std::string& plain);

    /// Shows \p text in \p pool.
    void setStatusInfo(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    /// Shows \p text as a warning.
    void setStatusWarning(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    /// Shows \p text as an error. With \p announce set, also notifies all action notifiers
    /// each time: `CLASS{POOL} "OBJECT" Error: TEXT`.
    void setStatusError(const StrongPtr<ValuePool>& pool, const std::string& text, bool announce) const;

    const StrongPtr<VValueParameter<VObjectStatus>, ValueNotifierList>& statusOutput() const noexcept
    {
        return m_output;
    }

private:
    void show(const StrongPtr<ValuePool>& pool, const std::string& text) const;

    StrongPtr<VValueParameter<VObjectStatus>, ValueNotifierList> m_output;
};

/// Base class of processing objects whose update gives up by throwing a text, which becomes
/// their status.
class FATHOM_API CatchStatus : public VObject, public StatusIndicator {
public:
    /// The output is named `StatusIndicator::Slotname` and starts empty.
    CatchStatus(const std::string& name, int level, const StrongPtr<VCreationPreferences, InterfaceBase>& preferences);
    ~CatchStatus() override;

    /// As `update`. A `const char*` that it throws is shown as information; any other
    /// exception propagates to the caller of `update`.
    virtual void safeUpdate(VRequest& request, double precision) = 0;

    /// Calls `safeUpdate`. Always returns true.
    bool update(VRequest& request, double precision) override;
};

} // namespace Orla
