# SPDX-License-Identifier: MIT
# fish completion for kravoltix. The game looks at its first two options; help counts only as the first.
complete -c kravoltix -f
complete -c kravoltix -n 'test (count (commandline -opc)) -le 2' -l fullscreen -o fs -d 'Play on the full screen'
complete -c kravoltix -n 'test (count (commandline -opc)) -le 2' -l nosound -o ns -d 'Play without sound'
complete -c kravoltix -n 'test (count (commandline -opc)) -eq 1' -l help -d 'Print options and keys'
