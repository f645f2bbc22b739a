# SPDX-License-Identifier: BSD-3-Clause
# shellcheck shell=sh
#
# Sourced by the scripts: where things are kept that are built or downloaded once and then shared by
# all clones and presets. Set ODBS_CACHE to move it.

ODBS_CACHE=${ODBS_CACHE:-${XDG_CACHE_HOME:-${HOME:?}/.cache}/odb_server}
export ODBS_CACHE
