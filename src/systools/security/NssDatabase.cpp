#include "systools/security/NssDatabase.h"

#include <cert.h>
#include <certdb.h>
#include <keyhi.h>
#include <nss.h>
#include <pk11pub.h>
#include <prerror.h>

#include <algorithm>
#include <set>

namespace halvane::systools {

namespace {

template <auto Free>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        Free(object);
    }
};
void freeItem(SECItem* item) { SECITEM_FreeItem(item, PR_TRUE); }
void shutDown(NSSInitContext* context) { NSS_ShutdownContext(context); }

using ContextPointer = std::unique_ptr<NSSInitContext, Release<shutDown>>;
using SlotPointer = std::unique_ptr<PK11SlotInfo, Release<PK11_FreeSlot>>;
using CertificatePointer = std::unique_ptr<CERTCertificate, Release<CERT_DestroyCertificate>>;
using CertificateList = std::unique_ptr<CERTCertList, Release<CERT_DestroyCertList>>;
using PrivateKeyPointer = std::unique_ptr<SECKEYPrivateKey, Release<SECKEY_DestroyPrivateKey>>;
using PublicKeyPointer = std::unique_ptr<SECKEYPublicKey, Release<SECKEY_DestroyPublicKey>>;
using InfoPointer = std::unique_ptr<CERTSubjectPublicKeyInfo, Release<SECKEY_DestroySubjectPublicKeyInfo>>;
using ItemPointer = std::unique_ptr<SECItem, Release<freeItem>>;

/// The library takes everything by pointers to what it does not change.
SECItem item(const util::Bytes& bytes) {
    return {siBuffer, reinterpret_cast<unsigned char*>(const_cast<char*>(bytes.data())), static_cast<unsigned>(bytes.size())};
}

util::Bytes bytesOf(const SECItem& item) { return {reinterpret_cast<const char*>(item.data), item.len}; }

util::Error failure(const std::string& what) {
    const PRErrorCode code = PR_GetError();
    const char* name = PR_ErrorToName(code);
    const std::string reason = name == nullptr ? "error " + std::to_string(code) : std::string(name);
    return util::serviceError("certificate database: cannot " + what + " (" + reason + ")");
}

/// The library tells these three apart no better.
util::Error cannotOpen(const std::filesystem::path& directory) {
    auto error = failure("open " + directory.string());
    error.description += ": another program holds it, it may not be written, or it is damaged";
    return error;
}

/// Nobody is there to type a password, and nobody may be asked for one.
char* noPassword(PK11SlotInfo*, PRBool, void*) { return nullptr; }

PublicKeyPointer publicKeyOf(const Certificate& certificate) {
    const SECItem der = item(certificate.publicKey);
    const InfoPointer info(SECKEY_DecodeDERSubjectPublicKeyInfo(&der));
    return PublicKeyPointer(info ? SECKEY_ExtractPublicKey(info.get()) : nullptr);
}

/// The part of a public key by which the database finds the private one; null for kinds that it cannot hold.
SECItem* identifyingPart(SECKEYPublicKey* key) {
    if (key == nullptr) return nullptr;
    const KeyType type = SECKEY_GetPublicKeyType(key);
    if (type == rsaKey) return &key->u.rsa.modulus;
    if (type == ecKey) return &key->u.ec.publicValue;
    return nullptr;
}

PrivateKeyPointer findPrivateKey(PK11SlotInfo* slot, const Certificate& certificate) {
    const PublicKeyPointer key = publicKeyOf(certificate);
    SECItem* part = identifyingPart(key.get());
    const ItemPointer id(part == nullptr ? nullptr : PK11_MakeIDFromPubKey(part));
    return PrivateKeyPointer(id ? PK11_FindKeyByKeyID(slot, id.get(), nullptr) : nullptr);
}

template <typename Visit>
bool forEachCertificate(PK11SlotInfo* slot, Visit visit) {
    const CertificateList list(PK11_ListCertsInSlot(slot));
    if (!list) return false;
    for (auto* node = CERT_LIST_HEAD(list.get()); !CERT_LIST_END(node, list.get()); node = CERT_LIST_NEXT(node)) visit(node->cert);
    return true;
}

CertificatePointer findCertificate(PK11SlotInfo* slot, const Certificate& certificate) {
    CertificatePointer found;
    forEachCertificate(slot, [&](CERTCertificate* each) {
        if (!found && bytesOf(each->derCert) == certificate.der) found.reset(CERT_DupCertificate(each));
    });
    return found;
}

/// All certificates of one subject share a name, and no others may have it.
std::string freeNickname(PK11SlotInfo* slot, CERTCertificate* certificate, const std::string& wish) {
    std::set<std::string> taken;
    std::string ofSubject;
    forEachCertificate(slot, [&](CERTCertificate* each) {
        if (each->nickname == nullptr) return;
        if (SECITEM_ItemsAreEqual(&each->derSubject, &certificate->derSubject) != 0) {
            ofSubject = each->nickname;
        } else {
            taken.insert(each->nickname);
        }
    });
    if (!ofSubject.empty()) return ofSubject;
    std::string name = wish;
    for (int number = 2; taken.contains(name); ++number) name = wish + " #" + std::to_string(number);
    return name;
}

}  // namespace

struct NssDatabase::State {
    // The slot goes before the library does: that is why it stands below.
    ContextPointer context;
    SlotPointer slot;
};

NssDatabase::NssDatabase(std::unique_ptr<State> state) : state_(std::move(state)) {}
NssDatabase::NssDatabase(NssDatabase&&) noexcept = default;
NssDatabase::~NssDatabase() = default;

bool NssDatabase::exists(const std::filesystem::path& directory) {
    std::error_code error;
    return std::filesystem::exists(directory / "cert9.db", error);
}

util::Result<NssDatabase> NssDatabase::open(const std::filesystem::path& directory, Access access) {
    const PRUint32 flags = NSS_INIT_NOMODDB | NSS_INIT_NOROOTINIT | (access == Access::Read ? NSS_INIT_READONLY : 0U);
    NSSInitParameters parameters{};
    parameters.length = sizeof parameters;
    auto state = std::make_unique<State>();
    state->context.reset(NSS_InitContext(("sql:" + directory.string()).c_str(), "", "", "", &parameters, flags));
    if (!state->context) return cannotOpen(directory);
    PK11_SetPasswordFunc(noPassword);
    state->slot.reset(PK11_GetInternalKeySlot());
    if (!state->slot) return cannotOpen(directory);
    PK11SlotInfo* slot = state->slot.get();
    if (access == Access::Read) return NssDatabase(std::move(state));

    if (PK11_IsReadOnly(slot) != 0) return util::serviceError("certificate database: " + directory.string() + " may not be written");
    // A new database takes keys only once it has a password; the empty one means that none is asked for.
    if (PK11_NeedUserInit(slot) != 0 && PK11_InitPin(slot, nullptr, nullptr) != SECSuccess) return failure("set up " + directory.string());
    NssDatabase database(std::move(state));
    if (database.keys() == Keys::Locked) {
        return util::serviceError("certificate database: the keys in " + directory.string() +
                                  " are protected by a password of their owner; nothing can be stored there without it");
    }
    return database;
}

NssDatabase::Keys NssDatabase::keys() const {
    PK11SlotInfo* slot = state_->slot.get();
    return PK11_NeedUserInit(slot) == 0 && PK11_NeedLogin(slot) != 0 && PK11_IsLoggedIn(slot, nullptr) == 0 ? Keys::Locked : Keys::Visible;
}

util::Result<std::vector<NssDatabase::Entry>> NssDatabase::entries() const {
    std::vector<Entry> found;
    const bool listed = forEachCertificate(state_->slot.get(), [&](CERTCertificate* each) {
        auto certificate = Certificate::parse(bytesOf(each->derCert));
        if (!certificate) return;  // of a kind that nothing of ours could use
        const bool key = hasPrivateKey(*certificate);
        found.push_back({std::move(*certificate), key});
    });
    if (!listed) return failure("list the certificates");
    return found;
}

util::Result<void> NssDatabase::addCertificate(const Certificate& certificate) {
    PK11SlotInfo* slot = state_->slot.get();
    if (findCertificate(slot, certificate)) return {};
    SECItem der = item(certificate.der);
    const CertificatePointer made(CERT_NewTempCertificate(CERT_GetDefaultCertDB(), &der, nullptr, PR_FALSE, PR_TRUE));
    if (!made) return failure("read the certificate of " + certificate.commonName);
    const std::string wish = certificate.commonName.empty() ? certificate.fingerprint : certificate.commonName;
    const std::string nickname = freeNickname(slot, made.get(), wish);
    if (PK11_ImportCert(slot, made.get(), CK_INVALID_HANDLE, nickname.c_str(), PR_FALSE) != SECSuccess)
        return failure("store the certificate of " + wish);
    return {};
}

util::Result<void> NssDatabase::addPrivateKey(const util::Bytes& privateKey, const Certificate& certificate) {
    PK11SlotInfo* slot = state_->slot.get();
    if (hasPrivateKey(certificate)) return {};
    const PublicKeyPointer key = publicKeyOf(certificate);
    SECItem* part = identifyingPart(key.get());
    if (part == nullptr) return failure("hold a key of this kind");
    SECItem der = item(privateKey);
    SECItem nickname = item(certificate.commonName);
    SECKEYPrivateKey* made = nullptr;
    const SECStatus status =
        PK11_ImportDERPrivateKeyInfoAndReturnKey(slot, &der, &nickname, part, PR_TRUE, PR_TRUE, KU_ALL, &made, nullptr);
    const PrivateKeyPointer owned(made);
    if (status != SECSuccess) return failure("store the private key of " + certificate.commonName);
    return {};
}

bool NssDatabase::hasPrivateKey(const Certificate& certificate) const { return findPrivateKey(state_->slot.get(), certificate) != nullptr; }

util::Result<void> NssDatabase::removeCertificate(const Certificate& certificate) {
    const CertificatePointer found = findCertificate(state_->slot.get(), certificate);
    if (found && SEC_DeletePermCertificate(found.get()) != SECSuccess)
        return failure("remove the certificate of " + certificate.commonName);
    return {};
}

util::Result<void> NssDatabase::removePrivateKey(const Certificate& certificate) {
    PrivateKeyPointer found = findPrivateKey(state_->slot.get(), certificate);
    // "Force": without it a key is kept as long as a certificate of it is there.
    if (found && PK11_DeleteTokenPrivateKey(found.release(), PR_TRUE) != SECSuccess)
        return failure("remove the private key of " + certificate.commonName);
    return {};
}

}  // namespace halvane::systools
