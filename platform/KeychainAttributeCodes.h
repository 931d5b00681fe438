#pragma once

namespace tasselby {

/// The codes that the attributes of a keychain item go by in `KeychainAttributes`.

/// The account's name.
inline constexpr const char* kAccountCode = "acct";

/// The kind of authentication the password is for; "form" for one saved from a web form.
inline constexpr const char* kAuthenticationTypeCode = "atyp";

/// When the item was made.
inline constexpr const char* kCreationDateCode = "cdat";

/// A text for the user that tells what the item is.
inline constexpr const char* kDescriptionCode = "desc";

/// The name that the user sees, by two names: the system shows the label as the item's name.
inline constexpr const char* kLabelCode = "labl";
inline constexpr const char* kItemNameCode = "labl";

/// When the item was last changed.
inline constexpr const char* kModificationDateCode = "mdat";

/// The server's host name.
inline constexpr const char* kServerCode = "srvr";

/// The service the password is for; internet passwords have none.
inline constexpr const char* kServiceCode = "svce";

}  // namespace tasselby
