#include <tarn/network/Session.hpp>

#include <tarn/libraries/AnnouncedObjects.hpp>
#include <tarn/network/SessionCore.hpp>
#include <tarn/text/ReadFile.hpp>

#include <loam/FileError.hpp>
#include <loam/OutputFile.hpp>

#include <utility>

namespace Tarn {

using Loam::Failure;
using Loam::Result;

Session::Session(const std::string& folder) : Session{std::make_shared<Detail::SessionCore>(folder)}
{
}

Session::Session(std::shared_ptr<Detail::SessionCore> core) noexcept : m_core{std::move(core)}
{
}

Session::Session(Session&&) noexcept = default;
Session& Session::operator=(Session&&) noexcept = default;
Session::~Session() = default;

Session Session::load(const std::string& path, const LoadOptions& options)
{
    return read(readFile(path), path, folderOf(path), options);
}

Session Session::read(const std::string& text, const std::string& title, const std::string& folder,
                      const LoadOptions& options)
{
    return Session{std::make_shared<Detail::SessionCore>(title, folder, text, options)};
}

const Faults& Session::faults() const noexcept
{
    return m_core->faults();
}

Orla::VNetwork& Session::network() const noexcept
{
    return m_core->objects();
}

std::vector<std::string> Session::objects() const
{
    const Orla::VNetwork::Scope scope{network()};
    std::vector<std::string> names;
    for (const auto& object : announcedObjects())
        names.push_back(object->Name());
    return names;
}

std::vector<std::string> Session::columns() const
{
    std::vector<std::string> titles;
    for (const Network::Column& column : m_core->network().columns)
        titles.push_back(column.title);
    return titles;
}

Result<void> Session::loadLibrary(const std::string& name)
{
    return m_core->loadLibrary(name);
}

Result<void> Session::setText(std::string_view input, const std::string& text)
{
    return m_core->setText(input, text);
}

Result<void> Session::setValue(std::string_view input, const Orla::StrongPtr<Orla::VValueBase>& value)
{
    return m_core->setValue(input, value);
}

Result<std::string> Session::text(std::string_view input) const
{
    const Result<Orla::StrongPtr<Orla::VSlot>> slot = m_core->findInput(input);
    if (!slot)
        return Failure{slot.reason()};
    return Loam::attempt([&] { return (*slot)->ownParameter()->DefaultValue()->Text(); });
}

Result<void> Session::create(const std::string& type, const std::string& name)
{
    return m_core->create(type, name);
}

Result<void> Session::remove(const std::string& name)
{
    return m_core->remove(name);
}

Result<void> Session::rename(const std::string& name, const std::string& newName)
{
    return m_core->rename(name, newName);
}

Result<void> Session::connect(const std::string& output, const std::string& input)
{
    return m_core->connect(output, input);
}

Result<void> Session::disconnect(const std::string& input)
{
    return m_core->disconnect(input);
}

Result<void> Session::addColumn(const std::string& title, const std::string& output)
{
    return m_core->addColumn(title, output);
}

Result<void> Session::selectChart(const std::string& name)
{
    return m_core->selectChart(name);
}

Result<std::string> Session::savedText() const
{
    return m_core->savedText();
}

Result<void> Session::save(const std::string& path) const
{
    const Result<std::string> text = savedText();
    if (!text)
        return Failure{text.reason()};
    return Loam::attempt([&] {
        Loam::OutputFile file{path};
        file.write(*text);
        file.commit();
    });
}

} // namespace Tarn
