# Sourced by the other scripts: makes sure the Debian packages a job needs are
# installed. As root it installs what is missing with apt-get; otherwise it
# stops and prints the exact line to run.
kez_require() {
  local missing=()
  local p
  for p in "$@"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" \
      || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  if [ "$(id -u)" -eq 0 ]; then
    echo "kez: installing ${missing[*]}" >&2
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq >&2 || return 1
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2 || return 1
  else
    echo "kez: missing packages; run:" >&2
    echo "  sudo apt-get install -y ${missing[*]}" >&2
    exit 1
  fi
}

# Packages every build needs.
KEZ_BASE_PACKAGES="cmake g++ make libgtest-dev libbenchmark-dev"
