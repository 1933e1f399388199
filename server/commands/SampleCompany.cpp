#include "server/commands/SampleCompany.h"

#include "server/Company.h"
#include "server/crypto/PasswordHash.h"
#include "server/crypto/Random.h"

namespace halvane::server {

namespace {

const Workplace kWorkplaces[] = {
    {"fenglin-t1", "枫林T1"}, {"fenglin-t4", "枫林T4"}, {"songling", "松岭"}, {"chengdu", "成都"},
    {"shanghai", "上海"},     {"dalian", "大连"},       {"wuhan", "武汉"},
};

std::vector<User> employees() {
    return {
        {.shortName = "chen.xiao",
         .nickName = "陈晓",
         .departmentName = "信息技术部",
         .roleId = "1",
         .roleName = "员工",
         .workAddress = "chengdu"},
        {.shortName = "li.wen",
         .nickName = "李雯",
         .departmentName = "市场部",
         .roleId = "1",
         .roleName = "员工",
         .workAddress = "shanghai"},
        {.shortName = "zhao.ming",
         .nickName = "赵明",
         .departmentName = "财务部",
         .roleId = "2",
         .roleName = "主管",
         .workAddress = "fenglin-t1"},
        {.shortName = "sun.jia",
         .nickName = "孙佳",
         .departmentName = "信息技术部",
         .roleId = "3",
         .roleName = "管理员",
         .workAddress = "dalian"},
    };
}

}  // namespace

std::vector<SampleCompany::Account> SampleCompany::addTo(Company& company, const std::string& mailDomain,
                                                         const std::optional<std::string>& password) {
    for (const Workplace& workplace : kWorkplaces) company.workplaces.put(workplace);
    std::vector<Account> accounts;
    for (User& user : employees()) {
        user.userName = user.shortName + "@" + mailDomain;
        const std::string chosen = password ? *password : Random::password();
        const bool added = company.users.add(user, PasswordHash::of(chosen)).has_value();
        accounts.push_back({user.userName, added ? std::optional(chosen) : std::nullopt});
    }
    return accounts;
}

}  // namespace halvane::server
