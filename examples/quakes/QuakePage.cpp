#include "Catalogue.hpp"

#include <fathom/HotKey.hpp>
#include <fathom/String.hpp>
#include <fathom/VObjectStatus.hpp>
#include <fathom/VOutput.hpp>
#include <fathom/VUrlSystemHandler.hpp>

#include <trellis/VObjectCreator.hpp>

#include <string>

namespace Quakes {

using Orla::describe;
using Orla::StrongPtr;

/// Opens the web page of the strongest event when the hot key, "o" by default, is pressed;
/// of several equally strong events, the latest. `url` and `place` describe the event.
class QuakePage : public Orla::VObject, public Orla::HotKey, public Orla::StatusIndicator {
public:
    QuakePage(const std::string& name, int level, const StrongPtr<Orla::VCreationPreferences>& preferences)
        : VObject{name, level, preferences}, HotKey{"event", 0}, StatusIndicator{this, "", 0, Slotname}
    {
        hotKeySlot().slot()->setInitialText("o");
    }

    bool update(Orla::VRequest& request, double) override
    {
        const StrongPtr<Orla::ValuePool>& pool = request.valuePool();
        const Catalogue catalogue = m_catalogue.value(pool);
        const Quake* strongest = nullptr;
        for (std::size_t i = 0; i < catalogue.size(); ++i) {
            const Quake& quake = catalogue[i];
            if (quake.magnitude && (!strongest || *quake.magnitude >= *strongest->magnitude))
                strongest = &quake;
        }
        const std::string url = strongest ? strongest->url : std::string();
        m_place(pool) <<= strongest ? strongest->place : std::string();
        m_url(pool) <<= url;
        if (HotKeyIsPressed(pool))
            open(url, pool);
        return true;
    }

private:
    void open(const std::string& url, const StrongPtr<Orla::ValuePool>& pool) const
    {
        if (url.empty())
            setStatusWarning(pool, "there is no page to open");
        else if (Orla::VUrlSystemHandler::Exec(url))
            setStatusInfo(pool, "opened " + escaped(url));
        else
            setStatusWarning(pool, "cannot open " + escaped(url));
    }

    Orla::TypedSlot<Catalogue> m_catalogue{this, "catalog", Catalogue{},
                                           describe("The events of which the strongest counts.")};
    Orla::VOutput<std::string> m_place{this, "place", "", describe("Where the strongest event happened.")};
    Orla::VOutput<std::string> m_url{this, "url", "", describe("The web page of the strongest event.").asWebPage()};
};

} // namespace Quakes

namespace {

const Orla::VObjectType<Quakes::QuakePage> quakePageType{
    "QuakePage", Orla::describeType("Opens the web page of the strongest earthquake when its key is pressed.")
                     .category("Earthquakes")
                     .keywords("browser", "URL")};

} // namespace
