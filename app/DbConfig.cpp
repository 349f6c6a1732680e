#include "app/DbConfig.h"

namespace merchantry::app {

std::string dataSource(const DbConfig& config) {
    return config.InstanceName.empty() ? config.ServerName : config.ServerName + "\\" + config.InstanceName;
}

std::string connectString(const DbConfig& config) {
    std::string text = "Provider=SQLOLEDB.1; User ID=sa; PASSWORD=" + config.Password + "; Data Source=" + dataSource(config) +
                       "; Initial Catalog=Tillmark2k";
    if (config.IntegratedSecurity == "1")
        text += ";Integrated Security=SSPI";
    return text;
}

} // namespace merchantry::app
