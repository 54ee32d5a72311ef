// Compares the interop assembly with the list of the public surface: Surface public_interface.txt
using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.CompilerServices;
using System.Runtime.InteropServices;
using System.Runtime.Remoting.Messaging;
using System.Runtime.Remoting.Proxies;
using System.Text.RegularExpressions;
using KespCommObj;

internal static class Surface
{
    private const BindingFlags Own = BindingFlags.Public | BindingFlags.Instance | BindingFlags.DeclaredOnly;
    private static readonly Assembly Interop = typeof(_CKespCommObj).Assembly;
    private static int looked, wrong;

    private static void Equal(object expected, object got, string what)
    {
        ++looked;
        if (Equals(expected, got)) return;
        ++wrong;
        Console.WriteLine(what + " is " + (got ?? "nothing") + ", not " + expected);
    }

    private static Type Find(string name)
    {
        return Interop.GetType("KespCommObj." + name, true);
    }

    // The methods of an interface in the order of their places.
    private static MethodInfo[] Methods(Type type)
    {
        return type.GetMethods(Own).OrderBy(method => method.MetadataToken).ToArray();
    }

    private static int DispId(Type type, MethodInfo method)
    {
        MemberInfo owner = type.GetProperties(Own).FirstOrDefault(one => one.GetAccessors().Contains(method));
        return (owner ?? method).GetCustomAttribute<DispIdAttribute>().Value;
    }

    private static void Enumeration(string name, string[] lines)
    {
        foreach (string line in lines)
        {
            string[] parts = line.Split(new[] { " = " }, StringSplitOptions.None);
            Equal(int.Parse(parts[1]), (int)Enum.Parse(Find(name), parts[0]), name + "." + parts[0]);
        }
        Equal(lines.Length, Enum.GetNames(Find(name)).Length, "the number of names in " + name);
    }

    // Lines such as "vtable 8  id 1  put AutoClose(value boolean)" and, of events, "id 4  DownloadEnd()".
    private static void Members(string name, string[] lines)
    {
        Type type = Find(name);
        MethodInfo[] methods = Methods(type);
        Equal(lines.Length, methods.Length, "the number of methods in " + name);
        for (int i = 0; i < Math.Min(lines.Length, methods.Length); ++i)
        {
            Match line = Regex.Match(lines[i], @"id (-?\d+)  (get |put |)(\w+)\((.*)\)");
            string member = line.Groups[3].Value, arguments = line.Groups[4].Value, way = line.Groups[2].Value;
            bool byReference = way == "put " && arguments.Contains("&");
            string expected = member == "NewEnum" ? "GetEnumerator"
                : byReference ? "Put" + member
                : way.Replace("get ", "get_").Replace("put ", "set_") + member;
            Equal(expected, methods[i].Name, "what stands at place " + i + " of " + name);
            int id = int.Parse(line.Groups[1].Value);
            Equal(id, DispId(type, methods[i]), "the identifier of " + name + "." + member);
            ParameterInfo[] parameters = methods[i].GetParameters();
            Equal(arguments == "" ? 0 : arguments.Split(',').Length, parameters.Length, "the arguments of " + member);
            Equal(arguments.Count(letter => letter == '&'), parameters.Count(one => one.ParameterType.IsByRef),
                  "the arguments by reference of " + name + "." + member);
            if (byReference || parameters.Any(one => one.ParameterType.IsByRef && !name.StartsWith("__")))
                Extension(type, byReference ? "Set" + member : member);
        }
    }

    // What has an argument by reference has an extension method without.
    private static void Extension(Type type, string name)
    {
        IEnumerable<MethodInfo> found = typeof(KespExtensions).GetMethods().Where(method =>
            method.Name == name && method.IsDefined(typeof(ExtensionAttribute)) &&
            method.GetParameters()[0].ParameterType == type &&
            !method.GetParameters().Any(one => one.ParameterType.IsByRef));
        Equal(1, found.Count(), "the number of extension methods " + type.Name + "." + name);
    }

    private static void Block(string heading, string[] lines)
    {
        string[] words = heading.Split(' ');
        Match guid = Regex.Match(heading, @"\{(.*?)\}");
        if (words[0] == "enumeration") Enumeration(words[1], lines);
        if (words[0] == "interface" || words[0] == "events") Members(words[1], lines);
        if (words[0] == "library" || words[0] == "enumeration") return;
        if (words[0] == "class" && !heading.Contains("creatable")) return;
        Equal(new Guid(guid.Groups[1].Value), Find(words[1] + (words[0] == "class" ? "Class" : "")).GUID, words[1]);
    }

    // The marshaller lies in an assembly that the .NET Framework finds by its full name alone.
    private static void Enumerators()
    {
        MethodInfo method = typeof(_CInstruments).GetMethod("GetEnumerator");
        var mark = (MarshalAsAttribute)Attribute.GetCustomAttribute(method.ReturnParameter, typeof(MarshalAsAttribute));
        string full = ", CustomMarshalers, Version=4.0.0.0, Culture=neutral, PublicKeyToken=b03f5f7f11d50a3a";
        Equal(true, mark.MarshalType.EndsWith(full), "whether the marshaller is named in full");
    }

    // An object of the library in which every operation succeeds with the same reply.
    private sealed class Instrument : RealProxy
    {
        private readonly object reply;

        public Instrument(Type type, object reply) : base(type) { this.reply = reply; }

        public override IMessage Invoke(IMessage message)
        {
            var call = (IMethodCallMessage)message;
            var arguments = (object[])call.Args.Clone();
            arguments[0] = reply;
            return new ReturnMessage(true, arguments, arguments.Length, call.LogicalCallContext, call);
        }
    }

    private static string Try(Func<byte[]> read)
    {
        try
        {
            return BitConverter.ToString(read());
        }
        catch (InvalidOperationException error)
        {
            return error.Message;
        }
    }

    // Binary replies are bytes, or there are none.
    private static void Replies()
    {
        foreach (object reply in new object[] { new byte[] { 0x80, 0xFF }, "\u20ac\u00ff" })
        {
            var comm = (_CKespCommObj)new Instrument(typeof(_CKespCommObj), reply).GetTransparentProxy();
            var port = (_CKespCOMPort3)new Instrument(typeof(_CKespCOMPort3), reply).GetTransparentProxy();
            string expected = reply is string ? "The reply is text: call SetInputMode(imBinary) before" : "80-FF";
            Equal(expected, Try(() => comm.QueryBinary("?")), "QueryBinary");
            Equal(expected, Try(() => port.ReadLineBinary()), "ReadLineBinary");
        }
    }

    private static int Main(string[] words)
    {
        foreach (string part in Regex.Split(File.ReadAllText(words[0]), @"\n\s*\n"))
        {
            var lines = part.Split('\n').Select(line => line.Trim()).Where(line => line != "" && line[0] != '#');
            if (lines.Any()) Block(lines.First(), lines.Skip(1).ToArray());
        }
        Enumerators();
        Replies();
        Console.WriteLine(looked + " things looked at, " + wrong + " wrong");
        return wrong == 0 && looked > 500 ? 0 : 1;
    }
}
