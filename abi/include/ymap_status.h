// Status codes between plug-ins and framework: what entry points, callbacks and framework calls return.
#pragma once

#define YMAP_OK 0x00000000U
#define YMAP_NOT_MAPPED 0x00000033U           // 51: the leaf has no native counterpart; not a failure
#define YMAP_ERR_BAD_TREE 0xaaf29e00U         // children counted but absent, or a child without a tag
#define YMAP_ERR_INVALID_ARGS 0xaaf2a000U     // a required argument is null
#define YMAP_ERR_INVALID_VALUE 0xaaf2e600U    // a value that cannot be mapped, or an unknown tag in a request
#define YMAP_ERR_NO_MATCH 0xaaf2ec00U         // from the framework: a native list entry without counterpart
#define YMAP_ERR_UNSUPPORTED_TAG 0xaaf2ee00U  // a foreign node in a request that adds data
