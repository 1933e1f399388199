#include "support/BusService.h"

namespace halvane::test {

BusService::BusService(const PrivateBus& bus, std::string name, std::string path, Handler handler)
    : name_(std::move(name)),
      path_(std::move(path)),
      handler_(std::move(handler)),
      thread_([this, address = bus.address()] { serve(address); }) {
    ready_.wait(false);
}

BusService::~BusService() {
    ending_ = true;
    thread_.join();
}

int BusService::onCall(sd_bus_message* call, void* self, sd_bus_error*) { return static_cast<BusService*>(self)->handler_(call); }

void BusService::serve(const std::string& address) {
    sd_bus* bus = nullptr;
    sd_bus_new(&bus);
    sd_bus_set_address(bus, address.c_str());
    sd_bus_set_bus_client(bus, 1);
    sd_bus_start(bus);
    sd_bus_add_object(bus, nullptr, path_.c_str(), &BusService::onCall, this);
    sd_bus_request_name(bus, name_.c_str(), 0);
    ready_ = true;
    ready_.notify_all();
    while (!ending_) {
        while (sd_bus_process(bus, nullptr) > 0) {
        }
        sd_bus_wait(bus, 20'000);
    }
    sd_bus_flush_close_unref(bus);
}

}  // namespace halvane::test
