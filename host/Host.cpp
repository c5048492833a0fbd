#include "host/Host.h"

#include "host/ModuleLoader.h"

namespace host {

namespace {
Host* g_current = nullptr;
}

Host::Host() : loader_(new ModuleLoader) {
    previous_ = g_current;
    g_current = this;
    coreHandle_ = newHandle();
    coreHandle2_ = newHandle();
}

Host::~Host() {
    unload();
    if (g_current == this) g_current = previous_;
}

Host* Host::current() { return g_current; }

int Host::callback(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
    Host* h = g_current;
    return h ? h->dispatch(target, message, p1, p2) : 1;
}

void Host::on(unsigned int message, Handler handler) { handlers_[message] = std::move(handler); }

bool Host::handles(unsigned int message) const { return handlers_.count(message) != 0; }

void* Host::newHandle() {
    void* h = reinterpret_cast<void*>(nextHandle_);
    nextHandle_ += 0x10;
    return h;
}

void Host::addInterface(const Interface& iface) { interfaces_.push_back(iface); }

std::vector<Host::Interface> Host::findInterfaces(const std::string& kind,
                                                  const std::string& provider,
                                                  const std::string& name) const {
    std::vector<Interface> out;
    for (const Interface& i : interfaces_) {
        if (i.kind != kind) continue;
        if (!provider.empty() && i.provider != provider) continue;
        if (!name.empty() && i.name != name) continue;
        out.push_back(i);
    }
    return out;
}

Host::Handler Host::handler(unsigned int message) const {
    auto it = handlers_.find(message);
    return it == handlers_.end() ? Handler() : it->second;
}

std::vector<unsigned int> Host::handledMessages() const {
    std::vector<unsigned int> out;
    for (const auto& entry : handlers_) out.push_back(entry.first);
    return out;
}

int Host::dispatch(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
    // The entry is made before the handler runs so that messages the handler sends back
    // to the module appear after the request that caused them.
    const std::size_t index = journal_.entries().size();
    journal_.add({Journal::ToHost, reinterpret_cast<std::uintptr_t>(target), message, p1, p2, 1,
                  std::string()});
    auto it = handlers_.find(message);
    if (it == handlers_.end()) return 1;
    std::string detail;
    const int result = it->second(target, p1, p2, detail);
    Journal::Entry& e = journal_.at(index);
    e.result = result;
    e.detail = detail;
    return result;
}

bool Host::load(const std::string& path, std::string* error) { return loader_->load(path, error); }

void Host::unload() { loader_->unload(); }

bool Host::loaded() const { return loader_->loaded(); }

int Host::getModuleInfo(MODULE_INFO* info) {
    return loader_->getModuleInfo ? loader_->getModuleInfo(info) : 1;
}

void Host::initialize() {
    if (loader_->initialize) loader_->initialize(&Host::callback, &Host::callback, coreHandle_, coreHandle2_);
}

void Host::startUp() {
    send(nullptr, MSG_SETUP);
    send(nullptr, MSG_REGISTER);
    send(nullptr, MSG_DEALING_READY);
}

int Host::send(void* target, unsigned int message, std::intptr_t p1, std::intptr_t p2,
               const std::string& detail) {
    if (!loader_->receiveMessage) return 1;
    const std::size_t index = journal_.entries().size();
    journal_.add({Journal::ToModule, reinterpret_cast<std::uintptr_t>(target), message, p1, p2, 0,
                  detail});
    const int result = loader_->receiveMessage(target, message, p1, p2);
    journal_.at(index).result = result;
    return result;
}

int Host::loadSkin(const std::uint16_t* path, const std::string& detail) {
    if (!loader_->loadSkin) return 1;
    const std::size_t index = journal_.entries().size();
    journal_.add({Journal::ToModule, 0, Journal::kEntryPointCall, reinterpret_cast<std::intptr_t>(path), 0, 0,
                  detail.empty() ? "LoadSkin" : "LoadSkin " + detail});
    const int result = loader_->loadSkin(path);
    journal_.at(index).result = result;
    return result;
}

}  // namespace host
