#include "platform/win32/services_win32.h"

#include <windows.h>
#include <initguid.h>
#include <taskschd.h>

#include <functional>
#include <vector>

namespace corvane {

namespace {

// A manager and a service handle that close themselves.
struct ServiceHandles {
    SC_HANDLE manager = nullptr, service = nullptr;
    ~ServiceHandles() {
        if (service) CloseServiceHandle(service);
        if (manager) CloseServiceHandle(manager);
    }
    SysError Open(const std::string& name, DWORD access) {
        manager = OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT);
        if (manager) service = OpenServiceA(manager, name.c_str(), access);
        return service ? kNoError : GetLastError();
    }
};

// The system's error code in a COM result, where it holds one.
SysError ErrorOf(HRESULT result) {
    if (SUCCEEDED(result)) return kNoError;
    return HRESULT_FACILITY(result) == FACILITY_WIN32 ? HRESULT_CODE(result) : static_cast<SysError>(result);
}

std::wstring Wide(const std::string& text) {
    const int length = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
    std::wstring wide(length > 0 ? length : 1, L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), length);
    wide.resize(wide.size() - 1);
    return wide;
}

template <class T>
struct Com {
    T* p = nullptr;
    ~Com() {
        if (p) p->Release();
    }
    T** operator&() { return &p; }
    T* operator->() const { return p; }
};

// Runs `work` with the task service connected and the task's folder: "\A\B"
// is the task "B" of the folder "\A".
SysError WithTask(const std::string& path,
                  const std::function<HRESULT(ITaskFolder& folder, BSTR name, IRegisteredTask& task)>& work) {
    // The thread may have COM already, in either model; that serves too.
    const HRESULT init = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    HRESULT result = S_OK;
    {
        Com<ITaskService> service;
        Com<ITaskFolder> folder;
        Com<IRegisteredTask> task;
        const size_t slash = path.find_last_of('\\');
        const std::string parent = slash == std::string::npos || slash == 0 ? "\\" : path.substr(0, slash);
        BSTR folderName = SysAllocString(Wide(parent).c_str());
        BSTR name = SysAllocString(Wide(path.substr(slash == std::string::npos ? 0 : slash + 1)).c_str());
        VARIANT none;
        VariantInit(&none);
        result = CoCreateInstance(CLSID_TaskScheduler, nullptr, CLSCTX_INPROC_SERVER, IID_ITaskService,
                                  reinterpret_cast<void**>(&service));
        if (SUCCEEDED(result)) result = service->Connect(none, none, none, none);
        if (SUCCEEDED(result)) result = service->GetFolder(folderName, &folder);
        if (SUCCEEDED(result)) result = folder->GetTask(name, &task);
        if (SUCCEEDED(result)) result = work(*folder.p, name, *task.p);
        SysFreeString(folderName);
        SysFreeString(name);
    }
    if (SUCCEEDED(init)) CoUninitialize();
    return ErrorOf(result);
}

}  // namespace

SysError Win32ServiceManager::Query(const std::string& name, ServiceConfig& config) {
    ServiceHandles handles;
    if (const SysError error = handles.Open(name, SERVICE_QUERY_CONFIG)) return error;
    DWORD needed = 0;
    QueryServiceConfigA(handles.service, nullptr, 0, &needed);
    std::vector<BYTE> buffer(needed > 0 ? needed : 1);
    auto* found = reinterpret_cast<QUERY_SERVICE_CONFIGA*>(buffer.data());
    if (!QueryServiceConfigA(handles.service, found, static_cast<DWORD>(buffer.size()), &needed)) return GetLastError();
    config = {found->dwServiceType, found->dwStartType};
    return kNoError;
}

SysError Win32ServiceManager::SetStart(const std::string& name, uint32_t start) {
    ServiceHandles handles;
    if (const SysError error = handles.Open(name, SERVICE_CHANGE_CONFIG)) return error;
    const BOOL changed = ChangeServiceConfigA(handles.service, SERVICE_NO_CHANGE, start, SERVICE_NO_CHANGE, nullptr,
                                              nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    return changed ? kNoError : GetLastError();
}

SysError Win32TaskService::Enabled(const std::string& path, bool& enabled) {
    return WithTask(path, [&enabled](ITaskFolder&, BSTR, IRegisteredTask& task) {
        VARIANT_BOOL state = VARIANT_FALSE;
        const HRESULT result = task.get_Enabled(&state);
        enabled = state != VARIANT_FALSE;
        return result;
    });
}

// Only the task's own switch, through the service. Wine 8 takes put_Enabled
// and keeps nothing; the command reads the state back and says so. Registering
// the task's definition anew would keep the switch there, but Wine writes a
// definition's actions as an empty <Exec/>, so the task would lose its program.
SysError Win32TaskService::SetEnabled(const std::string& path, bool enabled) {
    const VARIANT_BOOL wanted = enabled ? VARIANT_TRUE : VARIANT_FALSE;
    return WithTask(path, [wanted](ITaskFolder&, BSTR, IRegisteredTask& task) { return task.put_Enabled(wanted); });
}

}  // namespace corvane
