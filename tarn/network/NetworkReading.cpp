#include <tarn/network/NetworkReading.hpp>

#include <tarn/network/NetworkParser.hpp>
#include <tarn/text/ReadFile.hpp>

#include <trellis/VNetwork.hpp>
#include <trellis/VObjectCreator.hpp>

namespace Tarn {

NetworkSource::NetworkSource(const std::string& thePath)
    : path{thePath}, folder{folderOf(thePath)}, text{readFile(thePath)}
{
}

NetworkReading::NetworkReading(const NetworkSource& source, const std::vector<std::string>& overrides)
    : m_faults{source.path}
    , m_unknown{source.path}
    , m_folder{source.folder}
    , m_libraries{Libraries::searchPath(source.folder)}
{
    Orla::VNetwork network{m_folder};
    network.setDataFolders(dataFolders());
    const Orla::VNetwork::Scope scope{network};
    // Which types are known depends on the libraries; the second pass reports the faults.
    Faults ignored{source.path};
    const std::vector<std::string> missing =
        m_libraries.loadAll(parseNetwork(source.text, ignored).libraries, m_unknown);
    m_file = parseNetwork(source.text, m_faults, &isKnownType);
    m_inputs = readInputs(m_file, overrides, missing, m_faults, m_unknown);
}

Loam::Result<void> NetworkReading::unload()
{
    m_inputs = {};
    return m_libraries.unload();
}

bool NetworkReading::isKnownType(const std::string& type)
{
    return bool(Orla::VObjectCreator::find(type));
}

} // namespace Tarn
