#include "ui/app_context.h"

#include "foundations/app_identity.h"

namespace corvane {

AppContext& App() {
    static AppContext context;
    return context;
}

void InitApp(HINSTANCE instance) {
    AppContext& app = App();
    app.instance = instance;
    char path[MAX_PATH] = {};
    GetModuleFileNameA(instance, path, MAX_PATH);
    app.appPath = FolderOf(path);
    app.settings.SetAppPath(app.appPath);
}

}  // namespace corvane
