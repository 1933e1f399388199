#include "server/store/WorkplaceStore.h"

namespace halvane::server {

void WorkplaceStore::put(const Workplace& workplace) {
    database_.run("INSERT INTO workplaces (value, name) VALUES (?, ?) ON CONFLICT (value) DO UPDATE SET name = excluded.name",
                  workplace.value, workplace.name);
}

bool WorkplaceStore::has(std::string_view value) { return database_.query("SELECT 1 FROM workplaces WHERE value = ?", value).next(); }

std::vector<Workplace> WorkplaceStore::all() {
    std::vector<Workplace> workplaces;
    auto row = database_.query("SELECT value, name FROM workplaces ORDER BY position");
    while (row.next()) workplaces.push_back({row.text(0), row.text(1)});
    return workplaces;
}

bool WorkplaceStore::remove(std::string_view value) { return database_.run("DELETE FROM workplaces WHERE value = ?", value) > 0; }

}  // namespace halvane::server
